#include "platform/gestures/SwipeReader.h"

#include <cmath>
#include <limits>
#include <span>

namespace tessaspaces {
namespace {

// Numbers of the window server's event fields.
namespace field {
constexpr int eventType = 55;
constexpr int hidType = 110;
constexpr int mask = 115;
constexpr int motion = 123;
constexpr int progress = 124;
constexpr int positionX = 125;
constexpr int positionY = 126;
constexpr int velocityX = 129;
constexpr int velocityY = 130;
constexpr int phase = 132;
}  // namespace field

constexpr std::int64_t gestureEvent = 29;
constexpr std::int64_t dockControlEvent = 30;
constexpr std::int64_t dockSwipe = 23;
constexpr std::uint16_t reportTag = 0x106D;

// The report is a head, the swipe, and with a velocity that too. Both parts begin with their length and their kind.
constexpr std::uint32_t swipeLength = 40;
constexpr std::uint32_t swipeKind = 23;
constexpr std::uint16_t swipeFlavor = 3;
constexpr std::uint32_t velocityLength = 28;
constexpr std::uint32_t velocityKind = 9;

/// Reads numbers, least significant byte first, and remembers whether all of them were there and as expected.
class Report {
 public:
  explicit Report(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  std::uint64_t number(std::size_t size) {
    if (rest_.size() < size) {
      good_ = false;
      rest_ = {};
      return 0;
    }
    std::uint64_t value = 0;
    for (std::size_t i = size; i-- > 0;) value = value << 8 | rest_[i];
    rest_ = rest_.subspan(size);
    return value;
  }

  void expect(std::size_t size, std::uint64_t value) {
    if (number(size) != value) good_ = false;
  }
  void expect16(std::uint16_t value) { expect(2, value); }
  void expect32(std::uint32_t value) { expect(4, value); }
  /// A number with 16 bits before and 16 after the point, the rest cut off.
  void expectFixed(double value) {
    const auto bits = static_cast<std::int32_t>(static_cast<std::uint32_t>(number(4)));
    // False for what is not a number, and for what has no such form.
    if (!(static_cast<double>(bits) == std::trunc(value * 65536))) good_ = false;
  }

  [[nodiscard]] bool goodToTheEnd() const { return good_ && rest_.empty(); }

 private:
  std::span<const std::uint8_t> rest_;
  bool good_ = true;
};

std::optional<SwipePhase> phaseOf(std::int64_t value) {
  for (const auto phase : {SwipePhase::began, SwipePhase::changed, SwipePhase::ended}) {
    if (value == static_cast<std::int64_t>(phase)) return phase;
  }
  return std::nullopt;
}

template <class Number>
bool fits(std::int64_t value) {
  return value >= 0 && value <= std::int64_t{std::numeric_limits<Number>::max()};
}

}  // namespace

std::optional<DockSwipe> readSwipe(const FieldEvent& event) {
  if (event.integer(field::eventType) != dockControlEvent || event.integer(field::hidType) != dockSwipe) {
    return std::nullopt;
  }
  const auto phase = phaseOf(event.integer(field::phase));
  const auto motion = event.integer(field::motion);
  const auto mask = event.integer(field::mask);
  const auto bytes = event.appended(reportTag);
  if (!phase || !fits<std::uint16_t>(motion) || !fits<std::uint32_t>(mask) || !bytes) return std::nullopt;

  DockSwipe swipe;
  swipe.phase = *phase;
  swipe.motion = static_cast<int>(motion);
  swipe.mask = static_cast<std::uint32_t>(mask);
  swipe.progress = event.number(field::progress);
  swipe.positionX = event.number(field::positionX);
  swipe.positionY = event.number(field::positionY);
  swipe.velocityX = event.number(field::velocityX);
  swipe.velocityY = event.number(field::velocityY);
  // Fingers that are lifted have a velocity, be it none.
  const bool hasVelocity = swipe.velocityX != 0 || swipe.velocityY != 0 || phase == SwipePhase::ended;

  Report report(*bytes);
  swipe.timestamp = report.number(8);
  if (swipe.timestamp == 0 || (event.timestamp() != 0 && event.timestamp() != swipe.timestamp)) return std::nullopt;
  report.expect(8, 0);
  report.expect32(0);
  report.expect32(0);
  report.expect32(hasVelocity ? 2 : 1);

  report.expect32(swipeLength);
  report.expect32(swipeKind);
  report.expect32(static_cast<std::uint32_t>(*phase) << 24);
  report.expect32(0);
  report.expectFixed(swipe.positionX);
  report.expectFixed(swipe.positionY);
  report.expect32(0);
  report.expect32(swipe.mask);
  report.expect16(static_cast<std::uint16_t>(motion));
  report.expect16(swipeFlavor);
  report.expectFixed(swipe.progress);

  if (hasVelocity) {
    report.expect32(velocityLength);
    report.expect32(velocityKind);
    report.expect32(0);
    report.expect32(1);
    report.expectFixed(swipe.velocityX);
    report.expectFixed(swipe.velocityY);
    report.expect32(0);
  }
  return report.goodToTheEnd() ? std::optional(swipe) : std::nullopt;
}

bool isGestureCompanion(const InputEvent& event) {
  return event.integer(field::eventType) == gestureEvent;
}

}  // namespace tessaspaces
