#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/InputEvents.h"

/// The events of the swipe by which a user goes to the next desktop, as the driver of a touchpad would report them:
/// a bare event is not enough, the dock looks at the driver's own record at its end. Any thread.
namespace tessaspaces::GestureSwitch {

// Numbers of the window server's event fields.
inline constexpr int fieldCGSEventType = 55;
inline constexpr int fieldGestureHIDType = 110;
inline constexpr int fieldSwipeMask = 115;
inline constexpr int fieldSwipeMotion = 123;
inline constexpr int fieldSwipeProgress = 124;  // a double, as the four below
inline constexpr int fieldSwipePositionX = 125;
inline constexpr int fieldSwipePositionY = 126;
inline constexpr int fieldSwipeVelocityX = 129;
inline constexpr int fieldSwipeVelocityY = 130;
inline constexpr int fieldGesturePhase = 132;

// Values of these fields.
inline constexpr std::int64_t cgsEventGesture = 29;
inline constexpr std::int64_t cgsEventDockControl = 30;
inline constexpr std::int64_t hidDockSwipe = 23;
inline constexpr std::int64_t motionHorizontal = 1;

/// The tag under which an event carries the driver's record.
inline constexpr std::uint16_t rawIOHIDPayloadTag = 0x106D;

enum class Phase { began = 1, changed = 2, ended = 4 };
/// Where to with natural scrolling; without it the desktops go the other way.
enum class Direction { left, right };

/// One event of a swipe, without the driver's record. Null when the system makes no events.
std::unique_ptr<InputEvent> dockEvent(Phase phase, Direction direction);
/// The event with the driver's record appended. Null when the event does not serialise into the form that this is
/// known for, or the system makes no event of what came out.
std::unique_ptr<InputEvent> augmented(const InputEvent& event);
/// The driver's record of the swipe event: 68 bytes, or 96 with a velocity.
std::vector<std::uint8_t> iohidPayload(const InputEvent& event);
/// With 16 bits before and 16 after the point, the rest cut off. A fatal stop for a value that does not fit.
std::int32_t fixed1616(double value);

/// Makes all events of a swipe, then posts them. False when one of them could not be made; none is posted then.
bool swipe(Direction direction);

}  // namespace tessaspaces::GestureSwitch
