#include "platform/gestures/SwipeTracker.h"

#include <utility>

namespace tessaspaces {
namespace {

constexpr int horizontal = 1;
/// A report that is older was not made for this event. Clocks count nanoseconds wherever this class is used; the
/// time is generous because nothing but a mistaken number has to be told from a busy machine.
constexpr std::uint64_t longestWait = 10'000'000'000;

bool sameSign(double a, double b) {
  return (a < 0 && b < 0) || (a > 0 && b > 0);
}

std::optional<SwipePhase> before(SwipePhase phase) {
  switch (phase) {
    case SwipePhase::began: return std::nullopt;
    case SwipePhase::changed: return SwipePhase::began;
    case SwipePhase::ended: return SwipePhase::changed;
  }
  return std::nullopt;
}

}  // namespace

std::optional<DockSwipe> SwipeTracker::take(const InputEvent& event, std::uint64_t now) {
  const auto last = std::exchange(last_, std::nullopt);
  const bool awaitsCompanion = std::exchange(companionPending_, false);
  if (isGestureCompanion(event)) {
    if (!last || !awaitsCompanion) return std::nullopt;
    if (last->phase == SwipePhase::ended) return last;
    last_ = last;
    return std::nullopt;
  }
  const auto* fields = dynamic_cast<const FieldEvent*>(&event);
  const auto next = fields ? readSwipe(*fields) : std::nullopt;
  if (!next) return std::nullopt;
  if (!awaitsCompanion) last_ = last;
  if (next->phase == SwipePhase::began) last_.reset();
  if (!continues(*next, now)) {
    last_.reset();
    return std::nullopt;
  }
  last_ = next;
  companionPending_ = true;
  return std::nullopt;
}

bool SwipeTracker::continues(const DockSwipe& next, std::uint64_t now) const {
  if (next.motion != horizontal || next.timestamp > now || now - next.timestamp > longestWait) return false;
  if (next.progress == 0) return false;
  const auto phase = last_ ? std::optional(last_->phase) : std::nullopt;
  if (phase != before(next.phase)) return false;
  if (last_ && (!sameSign(last_->progress, next.progress) || next.timestamp < last_->timestamp)) return false;
  return next.phase != SwipePhase::ended || sameSign(next.progress, next.velocityX);
}

SwipeSide sideOf(const DockSwipe& swipe, bool naturalScrolling) {
  return (swipe.progress < 0) == naturalScrolling ? SwipeSide::right : SwipeSide::left;
}

}  // namespace tessaspaces
