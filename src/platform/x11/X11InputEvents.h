#pragma once

#include <atomic>
#include <mutex>

#include "platform/InputEvents.h"
#include "platform/Session.h"
#include "platform/gestures/SwipeTracker.h"
#include "platform/x11/Connection.h"
#include "platform/x11/DesktopSteps.h"

namespace tessaspaces {

/// Mouse actions through XTEST, which the server takes for a hand's. There are no events of gestures on X11 that the
/// program could post: it makes them in memory, and each complete swipe takes the display under the pointer to its next
/// desktop on that side.
class X11InputEvents : public InputEvents {
 public:
  X11InputEvents(Connection& connection, Preferences& preferences, X11WindowServer& server, X11Screens& screens)
      : connection_(connection), preferences_(preferences), steps_(server, screens) {}
  X11InputEvents(const X11InputEvents&) = delete;
  X11InputEvents& operator=(const X11InputEvents&) = delete;
  ~X11InputEvents() override;

  std::unique_ptr<InputEvent> create() override;
  std::unique_ptr<InputEvent> recreate(std::span<const std::uint8_t> data) override;
  void post(const InputEvent& event) override;
  std::uint64_t absoluteTime() override;

  std::optional<Point> mouseLocation() override;
  std::optional<HeldInput> held() override;
  bool moveMouse(Point to) override;
  bool pressMouse() override;
  bool releaseMouse() override;

 private:
  bool fake(std::uint8_t type, std::uint8_t detail, Point at);
  void ignoreServerGrabs(bool ignore);

  Connection& connection_;
  Preferences& preferences_;
  DesktopSteps steps_;
  std::mutex trackerMutex_;  // guards tracker_
  SwipeTracker tracker_;
  std::atomic<bool> pressed_ = false;
};

}  // namespace tessaspaces
