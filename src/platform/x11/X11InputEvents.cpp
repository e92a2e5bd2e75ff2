#include "platform/x11/X11InputEvents.h"

#include <chrono>

namespace tessaspaces {

std::unique_ptr<InputEvent> X11InputEvents::create() {
  return nullptr;
}

std::unique_ptr<InputEvent> X11InputEvents::recreate(std::span<const std::uint8_t> /*data*/) {
  return nullptr;
}

void X11InputEvents::post(const InputEvent& /*event*/) {}

std::uint64_t X11InputEvents::absoluteTime() {
  return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
}

}  // namespace tessaspaces
