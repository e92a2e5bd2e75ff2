#include "harness/Client.h"

#include <unistd.h>

#include <algorithm>

#include "harness/XServer.h"

namespace tessaspaces::harness {
namespace {

constexpr std::uint32_t programPosition = 1U << 2U;  // WM_NORMAL_HINTS: these are the user's wishes, keep them
constexpr std::uint32_t programSize = 1U << 3U;

}  // namespace

Client::Client(const XServer& server) : x_(server.display()) {
  const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(x_.get(), x_.root(), XCB_CW_EVENT_MASK, &mask);
}

xcb_window_t Client::openUnmanaged(const WindowSpec& spec) {
  const xcb_window_t window = xcb_generate_id(x_.get());
  const std::uint32_t values[] = {spec.colour, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
  xcb_create_window(x_.get(), XCB_COPY_FROM_PARENT, window, x_.root(), static_cast<std::int16_t>(spec.frame.x),
                    static_cast<std::int16_t>(spec.frame.y), static_cast<std::uint16_t>(spec.frame.width),
                    static_cast<std::uint16_t>(spec.frame.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    x_.screen().root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
  setTitle(window, spec.title);
  x_.setText(window, "WM_CLASS", "STRING", spec.instance + '\0' + spec.className + '\0');
  x_.setNumbers(window, "_NET_WM_WINDOW_TYPE", "ATOM", {x_.atom(spec.type)});
  std::vector<std::uint32_t> hints(18);
  hints[0] = programPosition | programSize;
  x_.setNumbers(window, "WM_NORMAL_HINTS", "WM_SIZE_HINTS", hints);
  if (spec.pid) {
    char host[256] = {};
    gethostname(host, sizeof host - 1);
    x_.setText(window, "WM_CLIENT_MACHINE", "STRING", host);
    x_.setNumbers(window, "_NET_WM_PID", "CARDINAL", {static_cast<std::uint32_t>(*spec.pid)});
  }
  if (spec.desktop) {
    x_.setNumbers(window, "_NET_WM_DESKTOP", "CARDINAL", {static_cast<std::uint32_t>(*spec.desktop)});
    // What the harness's i3 configuration assigns workspaces by.
    x_.setText(window, "WM_WINDOW_ROLE", "STRING", "desktop-" + std::to_string(*spec.desktop + 1));
  }
  x_.setNumbers(window, "WM_PROTOCOLS", "ATOM", {x_.atom("WM_DELETE_WINDOW")});
  xcb_map_window(x_.get(), window);
  x_.flush();
  return window;
}

xcb_window_t Client::open(const WindowSpec& spec) {
  const xcb_window_t window = openUnmanaged(spec);
  const bool managed = waitFor([&] {
    const auto all = x_.numbers(x_.root(), "_NET_CLIENT_LIST");
    const auto desktop = x_.number(window, "_NET_WM_DESKTOP");
    return std::find(all.begin(), all.end(), window) != all.end() && desktop &&
           (!spec.desktop || static_cast<int>(*desktop) == *spec.desktop);
  });
  if (!managed) throw Failure("the window manager did not take the window '" + spec.title + "' as it should");
  return window;
}

void Client::close(xcb_window_t window) {
  xcb_destroy_window(x_.get(), window);
  x_.flush();
}

void Client::answerCloseRequests() {
  while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(x_.get())}) take(*event);
}

void Client::take(const xcb_generic_event_t& event) {
  constexpr std::uint8_t withoutSender = 0x7f;
  if ((event.response_type & withoutSender) != XCB_CLIENT_MESSAGE) return;
  const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
  if (message.type == x_.atom("WM_PROTOCOLS") && message.data.data32[0] == x_.atom("WM_DELETE_WINDOW")) {
    close(message.window);
  }
}

bool Client::waitFor(const std::function<bool()>& holds) {
  const Deadline deadline(patience);
  while (!holds()) {
    const auto event = x_.nextEvent(deadline);
    if (!event) return holds();
    take(*event);
    answerCloseRequests();
  }
  return true;
}

void Client::setTitle(xcb_window_t window, std::string_view title) {
  x_.setText(window, "_NET_WM_NAME", "UTF8_STRING", title);
  x_.setText(window, "WM_NAME", "STRING", title);
  x_.flush();
}

void Client::draw(xcb_window_t window, const std::array<std::uint32_t, 4>& quarters) {
  const auto geometry = x_.reply(xcb_get_geometry_reply, xcb_get_geometry(x_.get(), window));
  if (!geometry) throw Failure("the window to draw in is gone");
  const xcb_pixmap_t pixmap = xcb_generate_id(x_.get());
  xcb_create_pixmap(x_.get(), geometry->depth, pixmap, window, geometry->width, geometry->height);
  const xcb_gcontext_t context = xcb_generate_id(x_.get());
  xcb_create_gc(x_.get(), context, pixmap, 0, nullptr);
  const auto halfWidth = static_cast<std::uint16_t>((geometry->width + 1) / 2);
  const auto halfHeight = static_cast<std::uint16_t>((geometry->height + 1) / 2);
  for (std::size_t i = 0; i < quarters.size(); ++i) {
    const std::uint32_t pixel = 0xFF000000 | quarters.at(i);
    xcb_change_gc(x_.get(), context, XCB_GC_FOREGROUND, &pixel);
    const xcb_rectangle_t part{static_cast<std::int16_t>(i % 2 * halfWidth),
                               static_cast<std::int16_t>(i / 2 * halfHeight), halfWidth, halfHeight};
    xcb_poly_fill_rectangle(x_.get(), pixmap, context, 1, &part);
  }
  // As the background the server itself brings it back after each time the window was hidden.
  xcb_change_window_attributes(x_.get(), window, XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(x_.get(), 0, window, 0, 0, 0, 0);
  xcb_free_gc(x_.get(), context);
  xcb_free_pixmap(x_.get(), pixmap);
  x_.roundTrip();
}

void Client::resize(xcb_window_t window, int width, int height) {
  const std::uint32_t size[] = {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
  xcb_configure_window(x_.get(), window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
  const bool granted = waitFor([&] {
    const auto geometry = x_.reply(xcb_get_geometry_reply, xcb_get_geometry(x_.get(), window));
    return geometry && geometry->width == width && geometry->height == height;
  });
  if (!granted) throw Failure("the window manager does not let a window change its size");
}

}  // namespace tessaspaces::harness
