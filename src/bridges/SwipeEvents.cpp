#include "bridges/SwipeEvents.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include "base/Fatal.h"
#include "platform/Platform.h"

namespace tessaspaces::GestureSwitch {
namespace {

// A swipe that has hardly begun when it is let go at great speed: the dock goes to the next desktop at once.
constexpr double progress = 0.0001;
constexpr double velocity = 9999.0;
constexpr double positionX = 0.1;

/// What the serialised form that takes further records at its end begins with.
constexpr std::array<std::uint8_t, 4> knownForm{0x00, 0x00, 0x00, 0x02};

/// Puts numbers one behind the other, least significant byte first.
class Bytes {
 public:
  template <class... Numbers>
  void add(Numbers... numbers) {
    (addOne(numbers), ...);
  }
  [[nodiscard]] std::vector<std::uint8_t> take() { return std::move(bytes_); }

 private:
  template <class Number>
  void addOne(Number number) {
    const auto bits = static_cast<std::make_unsigned_t<Number>>(number);
    for (std::size_t i = 0; i < sizeof(bits); ++i) bytes_.push_back(static_cast<std::uint8_t>(bits >> (8 * i)));
  }

  std::vector<std::uint8_t> bytes_;
};

InputEvents& input() {
  return platform().inputEvents();
}

std::unique_ptr<InputEvent> companion() {
  auto event = input().create();
  if (event) event->setInteger(fieldCGSEventType, cgsEventGesture);
  return event;
}

}  // namespace

std::unique_ptr<InputEvent> dockEvent(Phase phase, Direction direction) {
  auto event = input().create();
  if (!event) return nullptr;
  const double sign = direction == Direction::right ? -1 : 1;
  event->setInteger(fieldCGSEventType, cgsEventDockControl);
  event->setInteger(fieldGestureHIDType, hidDockSwipe);
  event->setInteger(fieldGesturePhase, static_cast<std::int64_t>(phase));
  event->setDouble(fieldSwipeProgress, sign * progress);
  event->setInteger(fieldSwipeMotion, motionHorizontal);
  event->setDouble(fieldSwipePositionX, positionX);
  if (phase == Phase::ended) event->setDouble(fieldSwipeVelocityX, sign * velocity);
  return event;
}

std::vector<std::uint8_t> iohidPayload(const InputEvent& event) {
  const auto phase = event.integer(fieldGesturePhase);
  const double velocityX = event.number(fieldSwipeVelocityX);
  const double velocityY = event.number(fieldSwipeVelocityY);
  const bool hasVelocity = velocityX != 0 || velocityY != 0 || phase == static_cast<std::int64_t>(Phase::ended);
  const auto stamped = event.timestamp();

  using U16 = std::uint16_t;
  using U32 = std::uint32_t;
  using U64 = std::uint64_t;
  Bytes bytes;
  bytes.add(stamped != 0 ? stamped : input().absoluteTime(), U64{0}, U32{0}, U32{0}, U32{hasVelocity ? 2U : 1U});
  bytes.add(U32{0x28}, U32{0x17}, static_cast<U32>(phase) << 24, U32{0});
  bytes.add(fixed1616(event.number(fieldSwipePositionX)), fixed1616(event.number(fieldSwipePositionY)), U32{0});
  bytes.add(static_cast<U32>(event.integer(fieldSwipeMask)), static_cast<U16>(event.integer(fieldSwipeMotion)), U16{3},
            fixed1616(event.number(fieldSwipeProgress)));
  if (hasVelocity) {
    bytes.add(U32{0x1C}, U32{9}, U32{0}, U32{1}, fixed1616(velocityX), fixed1616(velocityY), U32{0});
  }
  return bytes.take();
}

std::int32_t fixed1616(double value) {
  const double fixed = std::trunc(value * 65536);
  using Limits = std::numeric_limits<std::int32_t>;
  // Written so that what is not a number is out of range too.
  if (!(fixed >= Limits::min() && fixed <= Limits::max())) fatal("a gesture's number does not fit into 16.16 bits");
  return static_cast<std::int32_t>(fixed);
}

std::unique_ptr<InputEvent> augmented(const InputEvent& event) {
  auto data = event.serialized();
  if (data.size() < knownForm.size() || !std::equal(knownForm.begin(), knownForm.end(), data.begin())) return nullptr;
  const auto payload = iohidPayload(event);
  const auto append16 = [&](std::size_t number) {
    data.push_back(static_cast<std::uint8_t>(number >> 8));
    data.push_back(static_cast<std::uint8_t>(number));
  };
  append16(payload.size());
  append16(rawIOHIDPayloadTag);
  data.insert(data.end(), payload.begin(), payload.end());
  return input().recreate(data);
}

bool swipe(Direction direction) {
  std::vector<std::unique_ptr<InputEvent>> events;
  for (const auto phase : {Phase::began, Phase::changed, Phase::ended}) {
    const auto bare = dockEvent(phase, direction);
    auto event = bare ? augmented(*bare) : nullptr;
    if (!event) return false;
    events.push_back(std::move(event));
  }
  // Half a swipe would leave the dock waiting for the rest, so that this one is made beforehand too.
  const auto gesture = companion();
  if (!gesture) return false;
  for (const auto& event : events) {
    input().post(*event);
    input().post(*gesture);
  }
  return true;
}

}  // namespace tessaspaces::GestureSwitch
