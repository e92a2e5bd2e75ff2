#include "harness/Overview.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace tessaspaces::harness {
namespace {

// In points, as the overview is designed: header, around the grid, between tiles, around a tile's content.
constexpr double headerHeight = 44;
constexpr double margin = 18;
constexpr double gap = 14;
constexpr double border = 2;

/// The area of a window that is on screen; nothing for others.
std::optional<Rectangle> shownPanel(const XConnection& x, xcb_window_t window) {
  const auto attributes = x.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(x.get(), window));
  if (!attributes || attributes->override_redirect == 0 || attributes->map_state != XCB_MAP_STATE_VIEWABLE) return {};
  if (x.text(window, "WM_CLASS").find("tessaspaces") == std::string::npos) return {};
  const auto at = x.reply(xcb_get_geometry_reply, xcb_get_geometry(x.get(), window));
  // Menus and tool tips are windows of the same kind.
  if (!at || at->width < 400 || at->height < 400) return {};
  return Rectangle{at->x, at->y, at->width, at->height};
}

}  // namespace

Overview::Overview(Session& session, int rows, int columns, std::vector<Rectangle> monitors)
    : session_(&session), rows_(rows), columns_(columns), monitors_(std::move(monitors)) {
  if (!monitors_.empty()) return;
  const auto& screen = session.probe.connection().screen();
  monitors_.push_back({0, 0, screen.width_in_pixels, screen.height_in_pixels});
}

std::vector<Rectangle> Overview::panels() const {
  const XConnection& x = session_->probe.connection();
  std::vector<Rectangle> found;
  const auto tree = x.reply(xcb_query_tree_reply, xcb_query_tree(x.get(), x.root()));
  if (!tree) return found;
  const xcb_window_t* children = xcb_query_tree_children(tree.get());
  for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
    if (const auto panel = shownPanel(x, children[i])) found.push_back(*panel);
  }
  return found;
}

bool Overview::waitUntilOpen(Milliseconds timeout) const {
  return session_->probe.waitFor([&] { return panels().size() == monitors_.size(); }, timeout);
}

bool Overview::waitUntilClosed(Milliseconds timeout) const {
  return session_->probe.waitFor([&] { return panels().empty(); }, timeout);
}

bool Overview::keyboardIsTaken() const {
  const XConnection& x = session_->probe.connection();
  // Nobody who takes it at this very moment finds it taken by the question.
  xcb_grab_server(x.get());
  const auto grab = x.reply(xcb_grab_keyboard_reply, xcb_grab_keyboard(x.get(), 0, x.root(), XCB_CURRENT_TIME,
                                                                       XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
  xcb_ungrab_keyboard(x.get(), XCB_CURRENT_TIME);
  xcb_ungrab_server(x.get());
  x.roundTrip();
  return grab && grab->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

void Overview::open() const {
  const std::size_t from = session_->program.logEnd();
  session_->keyboard.press(key);
  // The line comes when all panels are there and the keyboard has been asked for.
  if (!session_->program.waitForLog("GRID shown on ", from) || !waitUntilOpen()) {
    throw Failure("the overview does not open");
  }
  const Deadline deadline(patience);
  while (!keyboardIsTaken()) {
    if (deadline.passed()) throw Failure("the overview does not take the keyboard");
    std::this_thread::sleep_for(Milliseconds(5));
  }
}

void Overview::close() const {
  session_->keyboard.press(key);
  if (!waitUntilClosed()) throw Failure("the overview does not close");
  // No hand presses the key again sooner, and what comes sooner counts as its repeat.
  std::this_thread::sleep_for(Milliseconds(50));
}

Rectangle Overview::content(int index, int count, std::size_t monitor) const {
  const Rectangle& area = monitors_.at(monitor);
  const double aspect = static_cast<double>(monitors_.front().width) / monitors_.front().height;
  const int rows = std::max(1, std::min(rows_, (count + columns_ - 1) / columns_));
  const double roomWidth = area.width - 2 * margin;
  const double roomHeight = area.height - headerHeight - 2 * margin;
  const double highest = (roomHeight - (rows - 1) * gap) / rows;
  double width = (roomWidth - (columns_ - 1) * gap) / columns_;
  double height = width / aspect;
  if (height > highest) {
    height = highest;
    width = height * aspect;
  }
  const double left = (roomWidth - (width * columns_ + gap * (columns_ - 1))) / 2 + margin;
  const double top = headerHeight + margin + (roomHeight - (height * rows + gap * (rows - 1))) / 2;
  const double x = left + index % columns_ * (width + gap) + border;
  const double y = top + index / columns_ * (height + gap) + border;
  const auto whole = [](double value) { return static_cast<int>(std::lround(value)); };
  return {area.x + whole(x), area.y + whole(y), whole(width - 2 * border), whole(height - 2 * border)};
}

std::pair<int, int> Overview::middle(int index, int count, std::size_t monitor) const {
  const Rectangle tile = content(index, count, monitor);
  return {tile.x + tile.width / 2, tile.y + tile.height / 2};
}

std::pair<int, int> Overview::pointInTile(int index, int count, int x, int y, std::size_t monitor) const {
  const Rectangle tile = content(index, count, monitor);
  const Rectangle& area = monitors_.at(monitor);
  return {tile.x + (x - area.x) * tile.width / area.width, tile.y + (y - area.y) * tile.height / area.height};
}

}  // namespace tessaspaces::harness
