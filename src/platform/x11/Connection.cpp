#include "platform/x11/Connection.h"

#include <fmt/format.h>
#include <xcb/composite.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/Report.h"
#include "platform/x11/Xkb.h"

namespace tessaspaces {
namespace {

// How long the time of an event may serve as "now". Key presses use their own time well within it.
constexpr auto freshTime = std::chrono::milliseconds(500);
// How much later than a newer one an event may be read, in milliseconds: a day.
constexpr xcb_timestamp_t longestDelay = 24 * 60 * 60 * 1000;

XcbConnectionRef connect(int& screenNumber, std::string& error) {
  XcbConnectionRef connection(xcb_connect(nullptr, &screenNumber));
  const int code = xcb_connection_has_error(connection.get());
  if (code == 0) return connection;
  const char* display = std::getenv("DISPLAY");
  if (display == nullptr || *display == '\0') {
    error = "there is no X display: DISPLAY is not set";
  } else if (code == XCB_CONN_CLOSED_PARSE_ERR) {
    error = fmt::format("DISPLAY is not the name of an X display: '{}'", display);
  } else if (code == XCB_CONN_CLOSED_INVALID_SCREEN) {
    error = fmt::format("the X display '{}' has no such screen", display);
  } else {
    error = fmt::format("cannot connect to the X display '{}'", display);
  }
  return nullptr;
}

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; number > 0 && screens.rem > 0; --number) xcb_screen_next(&screens);
  return screens.rem > 0 ? screens.data : nullptr;
}

ExtensionCodes findExtensions(xcb_connection_t* connection) {
  for (auto* extension : {&xcb_randr_id, &xcb_xkb_id, &xcb_test_id, &xcb_composite_id}) {
    xcb_prefetch_extension_data(connection, extension);
  }
  const auto data = [&](xcb_extension_t& extension) {
    const auto* reply = xcb_get_extension_data(connection, &extension);
    return reply != nullptr && reply->present ? *reply : xcb_query_extension_reply_t{};
  };
  const auto randr = data(xcb_randr_id);
  ExtensionCodes codes;
  codes.randr = randr.major_opcode;
  codes.randrFirstEvent = randr.first_event;
  codes.randrFirstError = randr.first_error;
  codes.xkb = data(xcb_xkb_id).major_opcode;
  codes.xkbEvent = data(xcb_xkb_id).first_event;
  codes.xtest = data(xcb_test_id).major_opcode;
  codes.composite = data(xcb_composite_id).major_opcode;
  return codes;
}

xcb_window_t createWindow(Channel& channel, xcb_window_t root, std::uint32_t eventMask) {
  const xcb_window_t window = xcb_generate_id(channel.get());
  channel.send<xcb_create_window>(std::uint8_t{0}, window, root, std::int16_t{-10}, std::int16_t{-10}, std::uint16_t{1},
                                  std::uint16_t{1}, std::uint16_t{0}, std::uint16_t{XCB_WINDOW_CLASS_INPUT_ONLY},
                                  xcb_visualid_t{XCB_COPY_FROM_PARENT}, std::uint32_t{XCB_CW_EVENT_MASK}, &eventMask);
  return window;
}

}  // namespace

std::unique_ptr<Connection> Connection::open(std::string& error) {
  int screenNumber = 0;
  auto requests = connect(screenNumber, error);
  auto events = requests ? connect(screenNumber, error) : nullptr;
  if (!events) return nullptr;
  const auto* screen = screenOf(requests.get(), screenNumber);
  if (screen == nullptr) {
    error = "the X display has no screen";
    return nullptr;
  }
  std::unique_ptr<Connection> connection(new Connection(std::move(requests), std::move(events), *screen, screenNumber));
  if (connection->requests_.broken() || connection->events_.broken()) {
    error = "the X display closed the connection at once";
    return nullptr;
  }
  return connection;
}

Connection::Connection(XcbConnectionRef requests, XcbConnectionRef events, const xcb_screen_t& screen, int screenNumber)
    : requests_(std::move(requests)), events_(std::move(events)), screen_(screen) {
  requests_.setExtensions(findExtensions(requests_.get()));
  events_.setExtensions(findExtensions(events_.get()));
  atoms_ = Atoms::intern(requests_, screenNumber);
  if (extensions().randr != 0) {
    const auto cookie = requests_.send<xcb_randr_query_version>(1U, 5U);
    const auto version = requests_.await<xcb_randr_query_version_reply>(cookie);
    hasMonitors_ = version && std::pair(version->major_version, version->minor_version) >= std::pair(1U, 5U);
  }
  ownWindow_ = createWindow(events_, root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
  timeWindow_ = createWindow(requests_, root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
  events_.flush();
}

void Connection::noteTime(xcb_timestamp_t time) {
  if (time == XCB_CURRENT_TIME) return;
  const std::lock_guard lock(timeMutex_);
  // Times wrap around, so compare distances.
  if (lastTime_ != XCB_CURRENT_TIME && lastTime_ - time - 1 < longestDelay) return;
  lastTime_ = time;
  lastTimeSeen_ = std::chrono::steady_clock::now();
}

xcb_timestamp_t Connection::timestamp() {
  {
    const std::lock_guard lock(timeMutex_);
    if (std::chrono::steady_clock::now() - lastTimeSeen_ < freshTime) return lastTime_;
  }
  return askTime();
}

xcb_timestamp_t Connection::askTime() {
  // Appending nothing to a property tells its watchers the time. The reply to the request after it
  // arrives behind that event.
  requests_.send<xcb_change_property>(std::uint8_t{XCB_PROP_MODE_APPEND}, timeWindow_, atoms_.netWmName,
                                      atoms_.utf8String, std::uint8_t{8}, 0U, "");
  requests_.await<xcb_get_input_focus_reply>(requests_.send<xcb_get_input_focus>());
  drainRequests();
  const std::lock_guard lock(timeMutex_);
  const bool answered = std::chrono::steady_clock::now() - lastTimeSeen_ < freshTime;
  return answered ? lastTime_ : xcb_timestamp_t{XCB_CURRENT_TIME};
}

void Connection::sendToRoot(xcb_window_t window, xcb_atom_t type, std::initializer_list<std::uint32_t> data,
                            std::uint32_t mask) {
  queueToRoot(window, type, data, mask);
  requests_.flush();
}

void Connection::queueToRoot(xcb_window_t window, xcb_atom_t type, std::initializer_list<std::uint32_t> data,
                             std::uint32_t mask) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = type;
  std::copy_n(data.begin(), std::min<std::size_t>(data.size(), 5), message.data.data32);
  requests_.send<xcb_send_event>(std::uint8_t{0}, root(), mask, reinterpret_cast<const char*>(&message));
}

void Connection::drainRequests() {
  const std::lock_guard lock(drainMutex_);
  while (const EventRef event{xcb_poll_for_queued_event(requests_.get())}) {
    if (event->response_type == 0) {
      handleError(reinterpret_cast<const xcb_generic_error_t&>(*event), extensions());
    } else if (eventType(*event) == XCB_PROPERTY_NOTIFY && !isSynthetic(*event)) {
      noteTime(eventAs<xcb_property_notify_event_t>(*event).time);
    }
  }
}

}  // namespace tessaspaces
