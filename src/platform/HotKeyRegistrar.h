#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "base/KeyCombo.h"
#include "base/Signal.h"

namespace tessaspaces {

/// Identifies a registration to the handler; `signature` is a four-character code.
struct HotKeyID {
  std::uint32_t signature = 0;
  std::uint32_t id = 0;
  friend bool operator==(const HotKeyID&, const HotKeyID&) = default;
};

using HotKeyHandle = std::uint64_t;

struct HotKeyRegistration {
  /// 0 when it worked. On X11 the X error code otherwise (10, BadAccess, when another program holds the
  /// key), or 2, BadValue, for a key that this keyboard does not have.
  std::int32_t status = 0;
  std::optional<HotKeyHandle> handle;
};

/// The system's global hot keys. Main thread, but for the press handler, which may run on any thread.
class HotKeyRegistrar {
 public:
  static constexpr std::int32_t noError = 0;

  virtual ~HotKeyRegistrar() = default;
  /// Called for every press (and every auto-repeat) of a registered combo. Set once, before registering.
  virtual void setPressHandler(std::function<void(HotKeyID)> handler) = 0;
  /// Takes the combo for this program alone.
  virtual HotKeyRegistration registerHotKey(KeyCombo combo, HotKeyID id) = 0;
  virtual void unregisterHotKey(HotKeyHandle handle) = 0;
  /// A hot key that is still held down may hold the whole keyboard with it: gives that up, so that the program can take
  /// the keyboard by other means at once. On X11 a round trip. Main thread.
  virtual void letGoOfKeyboard() {}
  /// Whether the combo's key is down at this moment, with whatever modifiers. Asks the system. Main thread.
  virtual bool isHeld(KeyCombo combo) { return static_cast<void>(combo), false; }

  /// Registered combos stopped working, as after a change of the keyboard: registering everything anew tells
  /// which. Main thread.
  Signal<> combosLost;
};

}  // namespace tessaspaces
