#include "platform/x11/X11InputEvents.h"

#include <chrono>

#include "platform/gestures/FieldEvent.h"

namespace tessaspaces {

std::unique_ptr<InputEvent> X11InputEvents::create() {
  return std::make_unique<FieldEvent>();
}

std::unique_ptr<InputEvent> X11InputEvents::recreate(std::span<const std::uint8_t> data) {
  return FieldEvent::fromBytes(data);
}

void X11InputEvents::post(const InputEvent& event) {
  std::optional<DockSwipe> swipe;
  {
    const std::lock_guard lock(trackerMutex_);
    swipe = tracker_.take(event, absoluteTime());
  }
  if (swipe) steps_.step(sideOf(*swipe, preferences_.naturalScrolling()));
}

std::uint64_t X11InputEvents::absoluteTime() {
  return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
}

}  // namespace tessaspaces
