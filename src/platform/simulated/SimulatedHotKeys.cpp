#include "platform/simulated/SimulatedHotKeys.h"

#include <algorithm>

namespace tessaspaces {

HotKeyRegistration SimulatedHotKeys::registerHotKey(KeyCombo combo, HotKeyID id) {
  world_.ask(Operation::registerHotKey, combo.display() + ", " + std::to_string(id.id));
  if (const auto taken = taken_.find(combo); taken != taken_.end()) return {taken->second, std::nullopt};
  const bool ours = std::any_of(registered_.begin(), registered_.end(),
                                [&](const auto& entry) { return entry.second.combo == combo; });
  if (ours) return {badAccess, std::nullopt};
  registered_[nextHandle_] = {combo, id};
  return {noError, nextHandle_++};
}

void SimulatedHotKeys::unregisterHotKey(HotKeyHandle handle) {
  world_.ask(Operation::unregisterHotKey, std::to_string(handle));
  registered_.erase(handle);
}

bool SimulatedHotKeys::press(KeyCombo combo) const {
  for (const auto& [handle, registered] : registered_) {
    if (registered.combo != combo) continue;
    const auto id = registered.id;  // the handler may unregister it
    if (handler_) handler_(id);
    return true;
  }
  return false;
}

void SimulatedHotKeys::take(KeyCombo combo, std::int32_t status) {
  taken_[combo] = status;
}

void SimulatedHotKeys::release(KeyCombo combo) {
  taken_.erase(combo);
}

}  // namespace tessaspaces
