#pragma once

#include <cstdint>
#include <optional>

#include "platform/gestures/FieldEvent.h"

namespace tessaspaces {

/// The moments of a swipe, numbered as in the events.
enum class SwipePhase { began = 1, changed = 2, ended = 4 };

/// One event of a swipe over the touchpad that the dock acts on, as the system's own driver would report it.
struct DockSwipe {
  SwipePhase phase = SwipePhase::began;
  /// 1 for swipes to the left and right.
  int motion = 0;
  std::uint32_t mask = 0;
  /// How far the fingers have come, a desktop being 1; negative is a swipe towards the left edge of the touchpad.
  double progress = 0;
  double positionX = 0;
  double positionY = 0;
  double velocityX = 0;
  double velocityY = 0;
  /// When the driver saw it, in the unit of InputEvents::absoluteTime; never 0.
  std::uint64_t timestamp = 0;
};

/// A dock control event with the driver's own report of the swipe appended. Absent for any other event, and when a
/// single byte of the report is not what a driver writes or does not agree with the event's fields.
[[nodiscard]] std::optional<DockSwipe> readSwipe(const FieldEvent& event);

/// The bare gesture event that follows each event of a swipe.
[[nodiscard]] bool isGestureCompanion(const InputEvent& event);

}  // namespace tessaspaces
