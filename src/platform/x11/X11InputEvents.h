#pragma once

#include <atomic>

#include "platform/InputEvents.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

/// Mouse actions through XTEST, which the server takes for a hand's.
class X11InputEvents : public InputEvents {
 public:
  explicit X11InputEvents(Connection& connection) : connection_(connection) {}
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
  std::atomic<bool> pressed_ = false;
};

}  // namespace tessaspaces
