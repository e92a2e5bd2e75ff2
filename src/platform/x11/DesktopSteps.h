#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/Signal.h"
#include "platform/gestures/SwipeTracker.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11WindowServer.h"

namespace tessaspaces {

/// The desktops that were asked for one after the other, of which the last is not known to be shown yet: swipes come
/// faster than a window manager answers, and each of them is to count.
class PendingSteps {
 public:
  using Time = std::chrono::steady_clock::time_point;
  /// By then the window manager has taken a request in, or never will.
  static constexpr auto patience = std::chrono::milliseconds(500);

  /// Where the next swipe leads to on a display that has these spaces and shows `shown`. It counts from the last space
  /// that was asked for, but from `shown` when that is none of those on the way there, as after a switch of the
  /// user's own, or when too much time has passed. Absent at the end of the spaces.
  std::optional<SpaceID> next(std::string_view display, std::span<const SpaceID> spaces, SpaceID shown, SwipeSide side,
                              Time now);
  /// The display where something is pending.
  [[nodiscard]] std::optional<std::string> display() const;
  /// A display was found to show this space: the ones on the way there lie behind it, and if it is the one asked for
  /// last, nothing is pending any more. A display that is back at one of those was taken there by somebody else.
  void arrived(std::string_view display, SpaceID shown);

 private:
  std::string display_;
  std::vector<SpaceID> path_;  // what was shown at first, then what was asked for
  Time asked_{};
};

/// Takes the display under the pointer to its next desktop, one message for each swipe. Any thread; made and let go on
/// the main thread.
class DesktopSteps {
 public:
  DesktopSteps(X11WindowServer& server, X11Screens& screens);
  ~DesktopSteps() { server_.onLook({}); }
  DesktopSteps(const DesktopSteps&) = delete;
  DesktopSteps& operator=(const DesktopSteps&) = delete;

  /// Nothing happens at the ends, and without a window manager.
  void step(SwipeSide side);

 private:
  [[nodiscard]] std::optional<std::string> displayUnderPointer();
  void lookForArrival();

  X11WindowServer& server_;
  X11Screens& screens_;
  std::mutex mutex_;  // guards pending_
  PendingSteps pending_;
  ScopedConnection changes_;
};

}  // namespace tessaspaces
