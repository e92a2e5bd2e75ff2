#pragma once

#include <map>
#include <vector>

#include "platform/HotKeyRegistrar.h"
#include "platform/x11/EventPump.h"
#include "platform/x11/KeyboardMap.h"
#include "platform/x11/X11Screens.h"

namespace tessaspaces {

/// Hot keys as passive key grabs on the root window. They stay with this program whatever window manager
/// comes and goes, and follow the keyboard mapping. Main thread; the press handler runs there too, inside
/// the processing of the event.
class X11HotKeys : public HotKeyRegistrar, public EventListener {
 public:
  X11HotKeys(Connection& connection, EventPump& pump, X11Screens& screens)
      : connection_(connection), pump_(pump), screens_(screens) {}
  ~X11HotKeys() override;

  void setPressHandler(std::function<void(HotKeyID)> handler) override { handler_ = std::move(handler); }
  /// One round trip.
  HotKeyRegistration registerHotKey(KeyCombo combo, HotKeyID id) override;
  void unregisterHotKey(HotKeyHandle handle) override;
  void letGoOfKeyboard() override;
  bool isHeld(KeyCombo combo) override;

  void handle(const xcb_generic_event_t& event) override;
  void eventsDrained() override;

 private:
  /// One key with one set of modifiers, locks left out.
  struct Key {
    xcb_keycode_t keycode = 0;
    std::uint16_t modifiers = 0;
    friend bool operator==(const Key&, const Key&) = default;
  };
  struct Registered {
    KeyCombo combo;
    HotKeyID id;
    std::vector<Key> keys;  // empty while the keyboard lacks the key or another program holds it
  };

  void prepare();
  void adopt(KeyboardMap map);
  [[nodiscard]] std::vector<Key> keysOf(KeyCombo combo) const;
  [[nodiscard]] bool isTaken(const std::vector<Key>& keys) const;
  /// Grabs all or none; the X error code, 0 when it worked.
  std::uint8_t grab(const std::vector<Key>& keys);
  void ungrab(const std::vector<Key>& keys);
  void grabAgain(KeyboardMap map);
  void pressed(const xcb_key_press_event_t& event);

  Connection& connection_;
  EventPump& pump_;
  X11Screens& screens_;
  std::function<void(HotKeyID)> handler_;
  std::map<HotKeyHandle, Registered> registered_;
  HotKeyHandle nextHandle_ = 1;

  bool prepared_ = false;
  bool mapStale_ = false;
  KeyboardMap map_;
  std::vector<std::uint16_t> lockVariants_;  // every combination of the locks' bits
  std::uint16_t significant_ = 0;            // the modifier bits that are not locks
};

}  // namespace tessaspaces
