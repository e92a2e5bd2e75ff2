#include "platform/x11/WindowTable.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

#include "platform/x11/Properties.h"
#include "platform/x11/WindowOwner.h"

namespace tessaspaces {
namespace {

constexpr std::uint32_t maxListedAtoms = 32;

struct Cookies {
  xcb_get_window_attributes_cookie_t attributes;
  xcb_get_property_cookie_t desktop;
  // With everything:
  xcb_get_geometry_cookie_t geometry{};
  xcb_translate_coordinates_cookie_t position{};
  xcb_get_property_cookie_t type{};
  xcb_get_property_cookie_t state{};
  xcb_get_property_cookie_t extents{};
  xcb_get_property_cookie_t name{};
  OwnerCookies owner{};
};

int layerOf(const Atoms& atoms, std::span<const std::uint32_t> types) {
  // The client lists its types in order of preference; those that we do not know do not count.
  for (const auto type : types) {
    if (type == atoms.typeNormal || type == atoms.typeDialog || type == atoms.typeUtility) return layers::ordinary;
    if (type == atoms.typeDesktop) return layers::desktop;
    if (type == atoms.typeDock) return layers::dock;
    if (type == atoms.typeToolbar || type == atoms.typeMenu) return layers::toolbar;
    if (type == atoms.typeSplash) return layers::splash;
    if (type == atoms.typeDropdownMenu || type == atoms.typePopupMenu || type == atoms.typeCombo ||
        type == atoms.typeDnd) {
      return layers::menu;
    }
    if (type == atoms.typeTooltip || type == atoms.typeNotification) return layers::notification;
  }
  return layers::ordinary;
}

bool contains(std::span<const std::uint32_t> values, std::uint32_t value) {
  return std::find(values.begin(), values.end(), value) != values.end();
}

Cookies ask(Connection& connection, xcb_window_t window, WindowDetail detail) {
  auto& channel = connection.requests();
  const auto& atoms = connection.atoms();
  Cookies cookies{channel.send<xcb_get_window_attributes>(window), askProperty(channel, window, atoms.netWmDesktop, 1)};
  if (detail == WindowDetail::everything) {
    cookies.geometry = channel.send<xcb_get_geometry>(window);
    cookies.position =
        channel.send<xcb_translate_coordinates>(window, connection.root(), std::int16_t{0}, std::int16_t{0});
    cookies.type = askProperty(channel, window, atoms.netWmWindowType, maxListedAtoms);
    cookies.state = askProperty(channel, window, atoms.netWmState, maxListedAtoms);
    cookies.extents = askProperty(channel, window, atoms.netFrameExtents, 4);
    cookies.name = askText(channel, window, atoms.netWmName);
    cookies.owner = askOwner(connection, window);
  }
  return cookies;
}

WindowBounds frameOf(const xcb_get_geometry_reply_t& geometry, const xcb_translate_coordinates_reply_t& position,
                     std::span<const std::uint32_t> extents) {
  const double border = geometry.border_width;
  const auto extent = [&](std::size_t i) { return extents.size() >= 4 ? double(extents[i]) : 0; };
  const double left = extent(0) + border;
  const double top = extent(2) + border;
  return {position.dst_x - left, position.dst_y - top, geometry.width + left + extent(1) + border,
          geometry.height + top + extent(3) + border};
}

// Every reply has to be taken, also those of a window that turns out to be gone.
std::optional<WindowRecord> receive(Connection& connection, xcb_window_t window, const Cookies& cookies,
                                    WindowDetail detail) {
  auto& channel = connection.requests();
  const auto& atoms = connection.atoms();
  const auto await = [&](xcb_get_property_cookie_t cookie) { return channel.await<xcb_get_property_reply>(cookie); };
  const auto attributes = channel.await<xcb_get_window_attributes_reply>(cookies.attributes);
  WindowRecord record;
  record.window = window;
  record.desktop = firstItem(await(cookies.desktop));
  record.viewable = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
  bool alive = attributes != nullptr;
  if (detail == WindowDetail::everything) {
    const auto geometry = channel.await<xcb_get_geometry_reply>(cookies.geometry);
    const auto position = channel.await<xcb_translate_coordinates_reply>(cookies.position);
    record.layer = layerOf(atoms, items(await(cookies.type)));
    const auto states = await(cookies.state);
    record.hidden = contains(items(states), atoms.netWmStateHidden);
    record.sticky = contains(items(states), atoms.netWmStateSticky);
    record.fullScreen = contains(items(states), atoms.netWmStateFullscreen);
    const auto extents = await(cookies.extents);
    record.title = text(await(cookies.name));
    record.pid = receiveOwner(connection, window, cookies.owner);
    alive = alive && geometry && position;
    if (alive) record.bounds = frameOf(*geometry, *position, items(extents));
  }
  if (!alive) return std::nullopt;
  return record;
}

}  // namespace

std::vector<WindowRecord> readWindows(Connection& connection, std::span<const xcb_window_t> listed,
                                      WindowDetail detail) {
  std::vector<xcb_window_t> windows;
  windows.reserve(listed.size());
  std::unordered_set<xcb_window_t> seen;
  std::copy_if(listed.begin(), listed.end(), std::back_inserter(windows),
               [&](xcb_window_t window) { return seen.insert(window).second; });

  auto& channel = connection.requests();
  std::vector<Cookies> cookies;
  cookies.reserve(windows.size());
  for (const auto window : windows) cookies.push_back(ask(connection, window, detail));

  std::vector<WindowRecord> records;
  records.reserve(windows.size());
  for (std::size_t i = 0; i < windows.size(); ++i) {
    if (auto record = receive(connection, windows[i], cookies[i], detail)) records.push_back(std::move(*record));
  }

  if (detail == WindowDetail::everything) {
    std::vector<std::pair<WindowRecord*, xcb_get_property_cookie_t>> untitled;
    for (auto& record : records) {
      if (!record.title) untitled.emplace_back(&record, askText(channel, record.window, XCB_ATOM_WM_NAME));
    }
    for (const auto& [record, cookie] : untitled) record->title = text(channel.await<xcb_get_property_reply>(cookie));
  }
  return records;
}

std::optional<std::string> readTitle(Connection& connection, xcb_window_t window) {
  auto& channel = connection.requests();
  const auto name = askText(channel, window, connection.atoms().netWmName);
  const auto oldName = askText(channel, window, XCB_ATOM_WM_NAME);
  auto title = text(channel.await<xcb_get_property_reply>(name));
  auto oldTitle = text(channel.await<xcb_get_property_reply>(oldName));
  return title ? title : oldTitle;
}

bool isTitle(const Atoms& atoms, xcb_atom_t property) {
  return property == atoms.netWmName || property == XCB_ATOM_WM_NAME;
}

bool readsOfWindow(const Atoms& atoms, xcb_atom_t property) {
  const xcb_atom_t looked[] = {atoms.netWmDesktop,    atoms.netWmWindowType, atoms.netWmState,
                               atoms.netFrameExtents, atoms.netWmPid,        XCB_ATOM_WM_CLIENT_MACHINE};
  return isTitle(atoms, property) || contains(looked, property);
}

std::vector<xcb_window_t> findClients(Connection& connection) {
  auto& channel = connection.requests();
  const auto children = [&](std::span<const xcb_window_t> parents) {
    std::vector<xcb_query_tree_cookie_t> cookies;
    for (const auto parent : parents) cookies.push_back(channel.send<xcb_query_tree>(parent));
    std::vector<std::vector<xcb_window_t>> result;
    for (const auto cookie : cookies) {
      auto& list = result.emplace_back();
      if (const auto reply = channel.await<xcb_query_tree_reply>(cookie)) {
        const auto* first = xcb_query_tree_children(reply.get());
        list.assign(first, first + xcb_query_tree_children_length(reply.get()));
        std::reverse(list.begin(), list.end());  // the server lists bottom to top
      }
    }
    return result;
  };
  const auto keepClients = [&](std::vector<xcb_window_t> candidates) {
    std::vector<xcb_get_property_cookie_t> cookies;
    for (const auto window : candidates) {
      cookies.push_back(askProperty(channel, window, connection.atoms().wmState, 1));
    }
    std::vector<xcb_window_t> clients;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      if (firstItem(channel.await<xcb_get_property_reply>(cookies[i]))) clients.push_back(candidates[i]);
    }
    return clients;
  };

  const auto root = connection.root();
  const auto tops = children({&root, 1}).front();
  const auto inside = children(tops);
  std::vector<xcb_window_t> candidates;
  for (std::size_t i = 0; i < tops.size(); ++i) {
    candidates.push_back(tops[i]);
    candidates.insert(candidates.end(), inside[i].begin(), inside[i].end());
  }
  return keepClients(std::move(candidates));
}

}  // namespace tessaspaces
