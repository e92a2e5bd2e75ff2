#pragma once

#include <map>

#include "platform/HotKeyRegistrar.h"
#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// A keyboard on which each combo belongs to one program at most. Main thread.
class SimulatedHotKeys final : public HotKeyRegistrar {
 public:
  /// What registering a combo gives that this program holds already: the same as for another's.
  static constexpr std::int32_t badAccess = 10;

  explicit SimulatedHotKeys(SimulatedWorld& world) : world_(world) {}

  void setPressHandler(std::function<void(HotKeyID)> handler) override { handler_ = std::move(handler); }
  HotKeyRegistration registerHotKey(KeyCombo combo, HotKeyID id) override;
  void unregisterHotKey(HotKeyHandle handle) override;

  bool press(KeyCombo combo) const;
  void take(KeyCombo combo, std::int32_t status);
  void release(KeyCombo combo);

 private:
  struct Registered {
    KeyCombo combo;
    HotKeyID id;
  };
  struct Order {
    bool operator()(const KeyCombo& a, const KeyCombo& b) const {
      return std::pair(a.keyCode, a.modifiers) < std::pair(b.keyCode, b.modifiers);
    }
  };

  SimulatedWorld& world_;
  std::function<void(HotKeyID)> handler_;
  std::map<HotKeyHandle, Registered> registered_;
  std::map<KeyCombo, std::int32_t, Order> taken_;
  HotKeyHandle nextHandle_ = 1;
};

}  // namespace tessaspaces
