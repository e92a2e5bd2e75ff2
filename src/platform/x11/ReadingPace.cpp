#include "platform/x11/ReadingPace.h"

#include <algorithm>
#include <utility>

namespace tessaspaces {

Duration ReadingPace::take(xcb_window_t window, TimePoint now) {
  const bool same = window_ == window;
  if (same && now < last_ + pause_) {
    waited_ = true;
    return last_ + pause_ - now;
  }
  // However late a reading is that had to wait: changes have not rested before it.
  const bool rested = !std::exchange(waited_, false) && now - last_ >= longest;
  pause_ = same && !rested ? std::min(2 * pause_, longest) : shortest;
  window_ = window;
  last_ = now;
  return Duration::zero();
}

}  // namespace tessaspaces
