#include "platform/x11/X11InputEvents.h"

#include <xcb/xtest.h>

#include <chrono>
#include <cmath>

namespace tessaspaces {
namespace {

constexpr std::uint8_t firstButton = 1;

}  // namespace

std::unique_ptr<InputEvent> X11InputEvents::create() {
  return nullptr;
}

std::unique_ptr<InputEvent> X11InputEvents::recreate(std::span<const std::uint8_t> /*data*/) {
  return nullptr;
}

void X11InputEvents::post(const InputEvent& /*event*/) {}

std::uint64_t X11InputEvents::absoluteTime() {
  return static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
}

std::optional<Point> X11InputEvents::mouseLocation() {
  auto& channel = connection_.requests();
  const auto reply = channel.await<xcb_query_pointer_reply>(channel.send<xcb_query_pointer>(connection_.root()));
  if (!reply || reply->same_screen == 0) return std::nullopt;
  return Point{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)};
}

bool X11InputEvents::moveMouse(Point to) {
  return fake(XCB_MOTION_NOTIFY, 0, to);
}

bool X11InputEvents::pressMouse() {
  return fake(XCB_BUTTON_PRESS, firstButton, {});
}

bool X11InputEvents::releaseMouse() {
  return fake(XCB_BUTTON_RELEASE, firstButton, {});
}

bool X11InputEvents::fake(std::uint8_t type, std::uint8_t detail, Point at) {
  if (connection_.extensions().xtest == 0) return false;
  auto& channel = connection_.requests();
  const auto cookie = channel.send<xcb_test_fake_input_checked>(
      type, detail, XCB_CURRENT_TIME, connection_.root(), static_cast<std::int16_t>(std::lround(at.x)),
      static_cast<std::int16_t>(std::lround(at.y)), std::uint8_t{0});
  return !channel.check(cookie);
}

}  // namespace tessaspaces
