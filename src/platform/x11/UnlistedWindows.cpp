#include "platform/x11/UnlistedWindows.h"

#include <algorithm>
#include <span>

namespace tessaspaces {
namespace {

constexpr int leastSide = 8;

}  // namespace

std::vector<UnlistedWindow> overridingWindows(CaptureLink& link) {
  auto& channel = link.channel();
  const auto tree = channel.await<xcb_query_tree_reply>(channel.send<xcb_query_tree>(link.root()));
  if (!tree) return {};
  struct Cookies {
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
  };
  std::vector<Cookies> asked;
  const std::span children(xcb_query_tree_children(tree.get()),
                           static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
  for (const auto window : children) {
    asked.push_back({window, channel.send<xcb_get_window_attributes>(window), channel.send<xcb_get_geometry>(window)});
  }
  std::vector<UnlistedWindow> found;
  for (const auto& cookies : asked) {
    const auto attributes = channel.await<xcb_get_window_attributes_reply>(cookies.attributes);
    const auto geometry = channel.await<xcb_get_geometry_reply>(cookies.geometry);
    if (!attributes || !geometry) continue;  // it has just gone
    if (attributes->override_redirect == 0 || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT ||
        std::min(geometry->width, geometry->height) < leastSide) {
      continue;
    }
    const double borders = 2.0 * geometry->border_width;
    found.push_back(
        {cookies.window,
         {double(geometry->x), double(geometry->y), geometry->width + borders, geometry->height + borders}});
  }
  return found;
}

}  // namespace tessaspaces
