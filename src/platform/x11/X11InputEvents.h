#pragma once

#include "platform/InputEvents.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

/// Mouse actions through XTEST, which the server takes for a hand's.
class X11InputEvents : public InputEvents {
 public:
  explicit X11InputEvents(Connection& connection) : connection_(connection) {}

  std::unique_ptr<InputEvent> create() override;
  std::unique_ptr<InputEvent> recreate(std::span<const std::uint8_t> data) override;
  void post(const InputEvent& event) override;
  std::uint64_t absoluteTime() override;

  std::optional<Point> mouseLocation() override;
  bool moveMouse(Point to) override;
  bool pressMouse() override;
  bool releaseMouse() override;

 private:
  bool fake(std::uint8_t type, std::uint8_t detail, Point at);

  Connection& connection_;
};

}  // namespace tessaspaces
