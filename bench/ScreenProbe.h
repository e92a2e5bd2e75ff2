#pragma once

#include <xcb/shm.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "harness/Session.h"

namespace tessaspaces::bench {

/// Sees what the root window shows by reading rows of its pixels into shared memory, again and again. Every sixteenth
/// row: enough to see any change that a person would, and so little that the server has time for those it watches.
class ScreenProbe {
 public:
  explicit ScreenProbe(const harness::XServer& server);
  ~ScreenProbe();
  ScreenProbe(const ScreenProbe&) = delete;
  ScreenProbe& operator=(const ScreenProbe&) = delete;

  struct Change {
    harness::Clock::time_point first;
    harness::Clock::time_point last;  // after it, all was quiet for `quiet`
  };
  /// Runs `act`, then looks until something has changed and `quiet` has passed without another change. Nothing when
  /// nothing changes.
  [[nodiscard]] std::optional<Change> changeAfter(const std::function<void()>& act,
                                                  harness::Milliseconds quiet = harness::Milliseconds(150));
  /// Returns when nothing has changed for so long; false when it never comes to rest.
  bool waitForRest(harness::Milliseconds quiet = harness::Milliseconds(150));

 private:
  /// A number that stands for what is on screen now.
  [[nodiscard]] std::uint64_t look();

  harness::XConnection x_;
  int width_ = 0;
  int height_ = 0;
  xcb_shm_seg_t segment_ = 0;
  std::uint32_t* pixels_ = nullptr;
};

}  // namespace tessaspaces::bench
