#pragma once

#include <cstdint>
#include <optional>

#include "platform/gestures/SwipeReader.h"

namespace tessaspaces {

/// Puts the events of a swipe together, as they are posted. One thread at a time.
class SwipeTracker {
 public:
  /// The next event, at `now` on the clock of InputEvents::absoluteTime. Gives the last event of a swipe that is
  /// complete with this one: began, changed and ended, each with the gesture event that follows it, all in the same
  /// horizontal direction, made just now, and let go while the fingers still moved that way. Anything else in between
  /// puts an end to the swipe.
  std::optional<DockSwipe> take(const InputEvent& event, std::uint64_t now);

 private:
  [[nodiscard]] bool continues(const DockSwipe& next, std::uint64_t now) const;

  std::optional<DockSwipe> last_;  // of the swipe under way
  bool companionPending_ = false;  // the one that follows `last_`
};

/// Which of the neighbours of the desktop that is shown a swipe leads to, in the order of the display's desktops.
enum class SwipeSide { left, right };

/// With natural scrolling the desktops follow the fingers: those that move left bring the one on the right.
[[nodiscard]] SwipeSide sideOf(const DockSwipe& swipe, bool naturalScrolling);

}  // namespace tessaspaces
