#pragma once

#include <cstdint>
#include <vector>

#include "platform/x11/Connection.h"

namespace tessaspaces {

/// Hears of all that changes what a reading of one client window finds: its own properties, and where it and the frames
/// that it lies in are and whether they are shown. On the event connection; main thread.
class FollowedWindow {
 public:
  explicit FollowedWindow(Connection& connection) : connection_(connection) {}

  /// From when this returns, every change is an event that `changeBy` knows. Costs one round trip for each window from
  /// this one up to the root, but none while it is followed already. XCB_NONE follows nothing. False when the window is
  /// gone or its frames could not be found.
  bool follow(xcb_window_t window);
  /// What of a reading of the window the event may have changed.
  enum class Change { nothing, title, facts };
  /// To be asked about all events.
  Change changeBy(const xcb_generic_event_t& event);
  /// What the events of a client window are to be selected by: there is one mask for each.
  [[nodiscard]] std::uint32_t maskOf(xcb_window_t client) const;

 private:
  void letGo();

  Connection& connection_;
  /// The window itself first, then what it lies in, without the root.
  std::vector<xcb_window_t> chain_;
  /// It still lies in them.
  bool intact_ = false;
};

}  // namespace tessaspaces
