#include "platform/simulated/SimulatedInputEvents.h"

namespace tessaspaces {

std::unique_ptr<InputEvent> SimulatedInputEvents::create() {
  static_cast<void>(world_);
  return nullptr;
}

std::unique_ptr<InputEvent> SimulatedInputEvents::recreate(std::span<const std::uint8_t> /*data*/) {
  return nullptr;
}

void SimulatedInputEvents::post(const InputEvent& /*event*/) {}

std::uint64_t SimulatedInputEvents::absoluteTime() {
  return 1;
}

}  // namespace tessaspaces
