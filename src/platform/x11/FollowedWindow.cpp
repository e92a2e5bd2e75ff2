#include "platform/x11/FollowedWindow.h"

#include <algorithm>

#include "platform/x11/Reader.h"

namespace tessaspaces {
namespace {

// Frames of window managers are one to three deep; a program's windows can lie as deep as it likes.
constexpr std::size_t deepest = 8;

constexpr std::uint32_t clientMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
constexpr std::uint32_t frameMask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;

void select(Channel& channel, xcb_window_t window, std::uint32_t mask) {
  channel.send<xcb_change_window_attributes>(window, std::uint32_t{XCB_CW_EVENT_MASK}, &mask);
}

}  // namespace

bool FollowedWindow::follow(xcb_window_t window) {
  if (intact_ && chain_.front() == window) return true;
  letGo();
  auto& channel = connection_.events();
  auto next = window;
  while (next != XCB_NONE && next != connection_.root()) {
    if (chain_.size() == deepest) return false;
    chain_.push_back(next);
    select(channel, next, next == window ? maskOf(window) : frameMask);
    // The answer also tells that the server has taken the selection in, so that no change escapes from now on: another
    // parent from here on is an event.
    const auto tree = channel.await<xcb_query_tree_reply>(channel.send<xcb_query_tree>(next));
    if (!tree) return false;
    next = tree->parent;
  }
  intact_ = !chain_.empty();
  return true;
}

void FollowedWindow::letGo() {
  for (const auto window : chain_) {
    select(connection_.events(), window,
           window == chain_.front() ? clientMask : std::uint32_t{XCB_EVENT_MASK_NO_EVENT});
  }
  chain_.clear();
  intact_ = false;
}

std::uint32_t FollowedWindow::maskOf(xcb_window_t client) const {
  return !chain_.empty() && chain_.front() == client ? clientMask | frameMask : clientMask;
}

FollowedWindow::Change FollowedWindow::changeBy(const xcb_generic_event_t& event) {
  if (chain_.empty()) return Change::nothing;
  const auto ifOurs = [&](xcb_window_t window) {
    return std::find(chain_.begin(), chain_.end(), window) != chain_.end() ? Change::facts : Change::nothing;
  };
  auto change = Change::nothing;
  switch (eventType(event)) {
    case XCB_PROPERTY_NOTIFY: {
      const auto& property = eventAs<xcb_property_notify_event_t>(event);
      const auto& atoms = connection_.atoms();
      if (property.window != chain_.front()) return Change::nothing;
      if (isTitle(atoms, property.atom)) return Change::title;
      return Reader::readsOfActive(atoms, property.atom) ? Change::facts : Change::nothing;
    }
    case XCB_CONFIGURE_NOTIFY: return ifOurs(eventAs<xcb_configure_notify_event_t>(event).window);
    case XCB_GRAVITY_NOTIFY: return ifOurs(eventAs<xcb_gravity_notify_event_t>(event).window);
    case XCB_MAP_NOTIFY: return ifOurs(eventAs<xcb_map_notify_event_t>(event).window);
    case XCB_UNMAP_NOTIFY: return ifOurs(eventAs<xcb_unmap_notify_event_t>(event).window);
    case XCB_REPARENT_NOTIFY: change = ifOurs(eventAs<xcb_reparent_notify_event_t>(event).window); break;
    case XCB_DESTROY_NOTIFY: change = ifOurs(eventAs<xcb_destroy_notify_event_t>(event).window); break;
    default: return Change::nothing;
  }
  if (change != Change::nothing) intact_ = false;
  return change;
}

}  // namespace tessaspaces
