#pragma once

#include <optional>

#include "platform/Dispatch.h"
#include "platform/x11/Xcb.h"

namespace tessaspaces {

/// When a window that changes may be read ahead. Each reading holds up the main thread for a moment, and a window that
/// is being dragged changes more than a hundred times a second. So the first change counts at once, which is all that
/// there is at most times, and those soon after it shortly; but the longer they go on, the more of them share a
/// reading.
class ReadingPace {
 public:
  /// The least and the most time between two readings of a window that goes on changing.
  static constexpr Duration shortest = std::chrono::milliseconds(10);
  static constexpr Duration longest = std::chrono::milliseconds(100);

  /// Zero: it is to be read now, which counts as done. Otherwise so long it has to wait, and then be asked for again.
  /// Another window than the last time never waits.
  [[nodiscard]] Duration take(xcb_window_t window, TimePoint now);

 private:
  std::optional<xcb_window_t> window_;
  TimePoint last_;
  Duration pause_ = shortest;
  bool waited_ = false;  // a change since the last reading had to wait
};

}  // namespace tessaspaces
