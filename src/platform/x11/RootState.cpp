#include "platform/x11/RootState.h"

#include <algorithm>
#include <set>

#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

// More desktops than this are a broken property, not a wish.
constexpr std::uint32_t maxDesktops = 1024;

constexpr std::string_view i3Name = "i3";

/// The FNV-1a hash of the name, out of the way of numbers.
SpaceID spaceNamed(std::string_view name) {
  std::uint32_t hash = 2166136261U;
  for (const char character : name) hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
  return (SpaceID{1} << 32) | hash;
}

struct CheckCookies {
  xcb_get_property_cookie_t self;
  xcb_get_property_cookie_t name;
};

CheckCookies askCheckWindow(Connection& connection, xcb_window_t window) {
  auto& channel = connection.requests();
  return {askProperty(channel, window, connection.atoms().netSupportingWmCheck, 1),
          askText(channel, window, connection.atoms().netWmName)};
}

std::vector<DesktopOrigin> origins(std::span<const std::uint32_t> values) {
  std::vector<DesktopOrigin> result;
  for (std::size_t i = 0; i + 1 < values.size(); i += 2) {
    result.push_back({static_cast<std::int32_t>(values[i]), static_cast<std::int32_t>(values[i + 1])});
  }
  return result;
}

}  // namespace

bool RootReader::reads(const Atoms& atoms, xcb_atom_t property) {
  const xcb_atom_t looked[] = {atoms.netSupportingWmCheck,  atoms.netNumberOfDesktops, atoms.netCurrentDesktop,
                               atoms.netDesktopNames,       atoms.netDesktopViewport,  atoms.netActiveWindow,
                               atoms.netClientListStacking, atoms.netClientList};
  return std::find(std::begin(looked), std::end(looked), property) != std::end(looked);
}

std::optional<std::uint32_t> RootState::desktopOf(SpaceID space) const {
  const auto found = std::find(spaces.begin(), spaces.end(), space);
  if (found == spaces.end()) return std::nullopt;
  return static_cast<std::uint32_t>(found - spaces.begin());
}

bool RootState::isI3() const {
  return managerName == i3Name;
}

std::vector<SpaceID> numberSpaces(std::string_view managerName, std::uint32_t desktopCount,
                                  std::span<const std::string> names) {
  std::vector<SpaceID> spaces;
  if (managerName == i3Name && names.size() >= desktopCount) {
    for (const auto& name : names.first(desktopCount)) spaces.push_back(spaceNamed(name));
    const std::set<SpaceID> distinct(spaces.begin(), spaces.end());
    if (distinct.size() == spaces.size()) return spaces;
    spaces.clear();
  }
  for (std::uint32_t desktop = 0; desktop < desktopCount; ++desktop) spaces.push_back(SpaceID{desktop} + 1);
  return spaces;
}

RootState RootReader::read(RootDetail detail) {
  connection_.drainRequests();
  auto& channel = connection_.requests();
  const auto& atoms = connection_.atoms();
  const auto root = connection_.root();
  const auto await = [&](xcb_get_property_cookie_t cookie) { return channel.await<xcb_get_property_reply>(cookie); };

  const auto checkCookie = askProperty(channel, root, atoms.netSupportingWmCheck, 1);
  const auto countCookie = askProperty(channel, root, atoms.netNumberOfDesktops, 1);
  const auto currentCookie = askProperty(channel, root, atoms.netCurrentDesktop, 1);
  const auto namesCookie = askText(channel, root, atoms.netDesktopNames);
  const auto viewportCookie = askProperty(channel, root, atoms.netDesktopViewport, 2 * maxDesktops);
  const auto activeCookie = askProperty(channel, root, atoms.netActiveWindow, 1);
  const auto pointerCookie = channel.send<xcb_query_pointer>(root);
  const bool wantWindows = detail == RootDetail::windows;
  std::optional<xcb_get_property_cookie_t> stackingCookie;
  std::optional<xcb_get_property_cookie_t> listCookie;
  if (wantWindows) {
    stackingCookie = askProperty(channel, root, atoms.netClientListStacking);
    listCookie = askProperty(channel, root, atoms.netClientList);
  }
  const auto guess = lastCheckWindow_.load();
  std::optional<CheckCookies> guessCookies;
  if (guess != XCB_NONE) guessCookies = askCheckWindow(connection_, guess);

  RootState state;
  const auto check = firstItem(await(checkCookie)).value_or(XCB_NONE);
  state.desktopCount = std::min(firstItem(await(countCookie)).value_or(0), maxDesktops);
  state.current = firstItem(await(currentCookie));
  if (state.current && *state.current >= state.desktopCount) state.current.reset();
  state.names = texts(await(namesCookie));
  state.viewports = origins(items(await(viewportCookie)));
  state.activeWindow = firstItem(await(activeCookie)).value_or(XCB_NONE);
  if (const auto pointer = channel.await<xcb_query_pointer_reply>(pointerCookie)) {
    state.pointer = PixelPoint{pointer->root_x, pointer->root_y};
  }
  if (wantWindows) {
    const auto stacking = await(*stackingCookie);
    const auto list = await(*listCookie);
    const auto& chosen = stacking && stacking->type != XCB_ATOM_NONE ? stacking : list;
    if (chosen && chosen->type != XCB_ATOM_NONE) {
      const auto windows = items(chosen);
      state.clients.emplace(windows.rbegin(), windows.rend());
    }
  }

  std::optional<std::uint32_t> self;
  std::optional<std::string> name;
  if (guessCookies) {
    self = firstItem(await(guessCookies->self));
    name = text(await(guessCookies->name));
  }
  if (check != guess && check != XCB_NONE) {
    const auto cookies = askCheckWindow(connection_, check);
    self = firstItem(await(cookies.self));
    name = text(await(cookies.name));
  }
  if (check != XCB_NONE && self == check) {
    state.checkWindow = check;
    state.managerName = name.value_or("");
  }
  state.spaces = numberSpaces(state.managerName, state.desktopCount, state.names);
  lastCheckWindow_.store(state.checkWindow);
  return state;
}

}  // namespace tessaspaces
