// The mouse of X11InputEvents.
#include <xcb/xtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/x11/X11InputEvents.h"

namespace tessaspaces {
namespace {

constexpr std::uint8_t firstButton = 1;
constexpr std::uint16_t buttonBits = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
// Option and command lie on these two nearly everywhere; what is on the others may be a lock.
constexpr std::uint16_t modifierBits = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

std::int16_t pixel(double value) {
  using Limits = std::numeric_limits<std::int16_t>;
  return static_cast<std::int16_t>(std::clamp<long>(std::lround(value), Limits::min(), Limits::max()));
}

Reply<xcb_query_pointer_reply_t> askPointer(Connection& connection) {
  auto& channel = connection.requests();
  auto reply = channel.await<xcb_query_pointer_reply>(channel.send<xcb_query_pointer>(connection.root()));
  return reply && reply->same_screen != 0 ? std::move(reply) : nullptr;
}

}  // namespace

X11InputEvents::~X11InputEvents() {
  // Nobody else would: the server lets a button that XTEST pressed stay down when its client goes.
  if (pressed_) releaseMouse();
}

std::optional<Point> X11InputEvents::mouseLocation() {
  const auto reply = askPointer(connection_);
  if (!reply) return std::nullopt;
  return Point{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)};
}

std::optional<HeldInput> X11InputEvents::held() {
  const auto reply = askPointer(connection_);
  if (!reply) return std::nullopt;
  return HeldInput{(reply->mask & buttonBits) != 0, (reply->mask & modifierBits) != 0};
}

bool X11InputEvents::moveMouse(Point to) {
  return fake(XCB_MOTION_NOTIFY, 0, to);
}

bool X11InputEvents::pressMouse() {
  if (connection_.extensions().xtest == 0) return false;
  // Some window managers grab the whole server while a window is dragged: the release has to get through to it.
  ignoreServerGrabs(true);
  pressed_ = true;
  if (fake(XCB_BUTTON_PRESS, firstButton, {})) return true;
  pressed_ = false;
  ignoreServerGrabs(false);
  return false;
}

bool X11InputEvents::releaseMouse() {
  const bool released = fake(XCB_BUTTON_RELEASE, firstButton, {});
  if (pressed_.exchange(false)) ignoreServerGrabs(false);
  return released;
}

void X11InputEvents::ignoreServerGrabs(bool ignore) {
  connection_.requests().send<xcb_test_grab_control>(static_cast<std::uint8_t>(ignore));
  connection_.requests().flush();
}

bool X11InputEvents::fake(std::uint8_t type, std::uint8_t detail, Point at) {
  if (connection_.extensions().xtest == 0) return false;
  auto& channel = connection_.requests();
  const auto cookie = channel.send<xcb_test_fake_input_checked>(type, detail, XCB_CURRENT_TIME, connection_.root(),
                                                                pixel(at.x), pixel(at.y), std::uint8_t{0});
  return !channel.check(cookie);
}

}  // namespace tessaspaces
