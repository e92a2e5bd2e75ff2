#include "platform/x11/X11AccessibilityWindows.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/x11/Activation.h"
#include "platform/x11/Properties.h"
#include "platform/x11/WindowTable.h"

namespace tessaspaces {
namespace {

constexpr std::uint32_t fromPager = 2;
constexpr std::uint32_t removeState = 0;
constexpr std::uint32_t allFour = 0xf;  // x, y, width and height are given
constexpr std::uint32_t maxListedStates = 32;
// The deepest that window managers put a client: in a frame, in a container, and so on.
constexpr int deepestNesting = 8;

/// Which window lies where, and in which window of the root.
struct Placement {
  Rect client;  // without its border
  Rect outer;   // of the root's child that it lies in, with that one's border
  bool framed = false;
  /// What the frame is wider and higher by, as the window table counts it.
  Size decorations;
  /// Left, right, top, bottom.
  std::array<double, 4> extents{};
};

struct Area {
  Rect inside;
  double border = 0;
  [[nodiscard]] Rect whole() const { return inside.inset(-border, -border); }
};

class X11Window final : public AccessibilityWindow {
 public:
  X11Window(Connection& connection, Reader& reader, xcb_window_t window)
      : connection_(connection), reader_(reader), window_(window) {}

  std::optional<Rect> frame() override {
    const auto record = read();
    if (!record) return std::nullopt;
    const auto& bounds = record->bounds;
    return Rect{*bounds.x, *bounds.y, *bounds.width, *bounds.height};
  }

  std::optional<std::string> title() override {
    const auto record = read();
    return record ? record->title : std::nullopt;
  }

  std::optional<Rect> titleBar() override;
  bool isAt(Point point) override;
  bool raise() override;
  bool place(const Rect& frame) override;
  bool close() override;

 private:
  std::optional<WindowRecord> read() {
    auto records = readWindows(connection_, {&window_, 1}, WindowDetail::everything);
    return records.empty() ? std::nullopt : std::optional(std::move(records.front()));
  }
  /// The child of the root that the window lies in, itself where it is one; none for a window that is gone.
  xcb_window_t outermost();
  std::optional<Placement> placement();

  Connection& connection_;
  Reader& reader_;
  xcb_window_t window_;
};

xcb_window_t X11Window::outermost() {
  auto& channel = connection_.requests();
  auto window = window_;
  for (int level = 0; level < deepestNesting; ++level) {
    const auto tree = channel.await<xcb_query_tree_reply>(channel.send<xcb_query_tree>(window));
    if (!tree) return XCB_NONE;
    if (tree->parent == connection_.root()) return window;
    window = tree->parent;
  }
  return XCB_NONE;
}

std::optional<Placement> X11Window::placement() {
  auto& channel = connection_.requests();
  const auto ask = [&](xcb_window_t window) {
    return std::pair(
        channel.send<xcb_get_geometry>(window),
        channel.send<xcb_translate_coordinates>(window, connection_.root(), std::int16_t{0}, std::int16_t{0}));
  };
  const auto outer = outermost();
  if (outer == XCB_NONE) return std::nullopt;
  const auto clientCookies = ask(window_);
  const auto outerCookies = ask(outer);
  const auto extentsCookie = askProperty(channel, window_, connection_.atoms().netFrameExtents, 4);
  const auto receive = [&](const auto& cookies) -> std::optional<Area> {
    const auto geometry = channel.await<xcb_get_geometry_reply>(cookies.first);
    const auto position = channel.await<xcb_translate_coordinates_reply>(cookies.second);
    if (!geometry || !position) return std::nullopt;
    return Area{{double(position->dst_x), double(position->dst_y), double(geometry->width), double(geometry->height)},
                double(geometry->border_width)};
  };
  const auto clientArea = receive(clientCookies);
  const auto outerArea = receive(outerCookies);
  const auto extentsReply = channel.await<xcb_get_property_reply>(extentsCookie);
  if (!clientArea || !outerArea) return std::nullopt;
  const auto& client = clientArea->inside;
  Placement placement{
      client, outerArea->whole(), outer != window_, {2 * clientArea->border, 2 * clientArea->border}, {}};
  const auto& around = placement.outer;
  const auto extents = items(extentsReply);
  if (extents.size() == 4) {
    std::copy(extents.begin(), extents.end(), placement.extents.begin());
    placement.decorations.width += placement.extents[0] + placement.extents[1];
    placement.decorations.height += placement.extents[2] + placement.extents[3];
  } else {
    // i3 does not say; its frames fit around their windows.
    placement.extents = {client.minX() - around.minX(), around.maxX() - client.maxX(), client.minY() - around.minY(),
                         around.maxY() - client.maxY()};
  }
  return placement;
}

std::optional<Rect> X11Window::titleBar() {
  const auto found = placement();
  if (!found || !found->framed) return std::nullopt;
  const auto& [left, right, top, bottom] = found->extents;
  // An edge no higher than those at the sides is just a border.
  if (top <= left || top <= right) return std::nullopt;
  const Rect bar{found->client.x, found->client.y - top, found->client.width, top};
  // What a client or a window manager claims, but no window shows.
  if (bar.intersection(found->outer) != bar) return std::nullopt;
  return bar;
}

bool X11Window::isAt(Point point) {
  auto& channel = connection_.requests();
  const Point pixel{std::floor(point.x), std::floor(point.y)};
  // From root to root the server names the topmost child at the point, with regard to shapes, as it does for clicks.
  const auto hitCookie = channel.send<xcb_translate_coordinates>(
      connection_.root(), connection_.root(), static_cast<std::int16_t>(pixel.x), static_cast<std::int16_t>(pixel.y));
  const auto screenCookie = channel.send<xcb_get_geometry>(connection_.root());
  const auto hit = channel.await<xcb_translate_coordinates_reply>(hitCookie);
  const auto screen = channel.await<xcb_get_geometry_reply>(screenCookie);
  if (!hit || !screen || hit->child == XCB_NONE) return false;
  // Windows reach beyond the screen, clicks do not.
  const Rect area{0, 0, static_cast<double>(screen->width), static_cast<double>(screen->height)};
  return area.contains(pixel) && hit->child == outermost();
}

bool X11Window::raise() {
  if (!read()) return false;
  activateWindow(connection_, reader_, window_);
  return true;
}

bool X11Window::place(const Rect& frame) {
  const auto& atoms = connection_.atoms();
  const auto stateCookie = askProperty(connection_.requests(), window_, atoms.netWmState, maxListedStates);
  const auto state = connection_.requests().await<xcb_get_property_reply>(stateCookie);
  const auto found = placement();
  if (!found) return false;
  const auto listed = items(state);
  const auto isIn = [&](xcb_atom_t each) { return std::find(listed.begin(), listed.end(), each) != listed.end(); };
  if (isIn(atoms.netWmStateFullscreen)) {
    connection_.sendToRoot(window_, atoms.netWmState, {removeState, atoms.netWmStateFullscreen, 0, fromPager});
  }
  if (isIn(atoms.netWmStateMaximizedHorz) || isIn(atoms.netWmStateMaximizedVert)) {
    connection_.sendToRoot(window_, atoms.netWmState,
                           {removeState, atoms.netWmStateMaximizedHorz, atoms.netWmStateMaximizedVert, fromPager});
  }
  // The position is that of the frame's corner, the size that of the content: less the decorations as they are, which
  // a maximised window may have fewer of.
  const auto number = [](double value) { return static_cast<std::uint32_t>(std::lround(value)); };
  const auto size = [&](double wanted, double decorations) { return number(std::max(1.0, wanted - decorations)); };
  connection_.sendToRoot(window_, atoms.netMoveresizeWindow,
                         {XCB_GRAVITY_NORTH_WEST | allFour << 8 | fromPager << 12, number(frame.x), number(frame.y),
                          size(frame.width, found->decorations.width), size(frame.height, found->decorations.height)});
  return true;
}

bool X11Window::close() {
  if (!read()) return false;
  connection_.sendToRoot(window_, connection_.atoms().netCloseWindow, {connection_.timestamp(), fromPager});
  return true;
}

}  // namespace

std::unique_ptr<AccessibilityWindow> X11AccessibilityWindows::find(std::int32_t pid, WindowID window) {
  const auto root = reader_.root(RootDetail::windows);
  const auto clients = root->clients ? *root->clients : findClients(connection_);
  if (std::find(clients.begin(), clients.end(), window) == clients.end()) return nullptr;
  const xcb_window_t wanted = window;
  const auto records = readWindows(connection_, {&wanted, 1}, WindowDetail::everything);
  if (records.empty() || records.front().pid != pid) return nullptr;
  return std::make_unique<X11Window>(connection_, reader_, window);
}

}  // namespace tessaspaces
