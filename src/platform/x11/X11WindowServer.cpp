#include "platform/x11/X11WindowServer.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <utility>

#include "base/Overloaded.h"
#include "platform/x11/DragHabits.h"
#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

// "Source indication" of EWMH messages: a pager acts on the user's behalf and is obeyed.
constexpr std::uint32_t fromPager = 2;
constexpr std::uint32_t removeState = 0;
constexpr std::int32_t badValue = XCB_VALUE;

// How long a window manager may take over the raw request before it counts as ignored.
constexpr int obedienceLooks = 20;
constexpr auto obedienceInterval = std::chrono::milliseconds(5);

std::vector<DesktopWindow> desktopWindows(const std::vector<WindowRecord>& records) {
  std::vector<DesktopWindow> windows;
  for (const auto& record : records) {
    if (record.desktop && *record.desktop != allDesktops) windows.push_back({*record.desktop, record.viewable});
  }
  return windows;
}

}  // namespace

/// The root and the screens as they fit together.
struct X11WindowServer::View {
  Reader::Root root;
  ScreenLayoutRef layout;
  DesktopMap map;
};

X11WindowServer::View X11WindowServer::view() {
  View view{reader_.root(RootDetail::desktops), screens_.layout(), {}};
  if (view.root->managed()) {
    view.map = mapDesktops(view.layout->monitors, view.root->viewports, view.root->desktopCount);
    visible_.note(view.layout->monitors, view.map, *view.root);
  }
  return view;
}

std::optional<std::uint32_t> X11WindowServer::current(const View& view, std::size_t monitor) {
  std::vector<DesktopWindow> windows;
  if (VisibleDesktops::needsWindows(view.map, *view.root, monitor)) {
    windows = desktopWindows(*reader_.windows(WindowDetail::desktops));
  }
  return visible_.current(view.layout->monitors, view.map, *view.root, monitor, windows);
}

std::int32_t X11WindowServer::mainConnectionID() {
  // The server numbers its clients in the upper bits of the resource ids that it hands them.
  const auto* setup = xcb_get_setup(connection_.requests().get());
  return static_cast<std::int32_t>(setup->resource_id_base / (setup->resource_id_mask + 1));
}

std::optional<std::vector<ManagedDisplay>> X11WindowServer::copyManagedDisplaySpaces() {
  const auto scope = reader_.beginRead();  // several displays may have to look at the windows
  const auto view = this->view();
  if (!view.root->managed()) return std::nullopt;
  const auto managedSpace = [&](std::uint32_t desktop) {
    ManagedSpace space;
    space.id64 = space.managedSpaceID = view.root->spaceOf(desktop);
    space.type = 0;
    if (desktop < view.root->names.size()) space.name = view.root->names[desktop];
    return space;
  };
  std::vector<ManagedDisplay> displays;
  for (std::size_t i = 0; i < view.layout->monitors.size(); ++i) {
    ManagedDisplay display;
    display.displayIdentifier = view.layout->monitors[i].identifier;
    display.spaces.emplace();
    for (const auto desktop : view.map.desktopsOf(i, view.root->desktopCount)) {
      display.spaces->push_back(managedSpace(desktop));
    }
    if (const auto shown = current(view, i)) display.currentSpace = managedSpace(*shown);
    displays.push_back(std::move(display));
  }
  return displays;
}

SpaceID X11WindowServer::managedDisplayGetCurrentSpace(std::string_view display) {
  const auto view = this->view();
  const auto monitor = view.layout->find(display);
  if (!monitor || !view.root->managed()) return 0;
  const auto desktop = current(view, *monitor);
  const auto shown = desktop ? view.root->spaceOf(*desktop) : 0;
  if (seen_) seen_(display, shown);
  return shown;
}

void X11WindowServer::managedDisplaySetCurrentSpace(std::string_view display, SpaceID space) {
  if (!switchTo(display, space)) return;
  for (int look = 0; look < obedienceLooks && managedDisplayGetCurrentSpace(display) != space; ++look) {
    dispatch_.sleep(obedienceInterval);
  }
}

std::optional<std::vector<WindowID>> X11WindowServer::copyWindowsOnSpace(SpaceID space) {
  // In a caller's scope these windows and those of the window list have to be the same.
  const auto detail = reader_.inScope() ? WindowDetail::everything : WindowDetail::desktops;
  const auto scope = reader_.beginRead();
  const auto root = reader_.root(RootDetail::windows);
  if (!root->managed()) return std::nullopt;
  std::vector<WindowID> result;
  const auto desktop = root->desktopOf(space);
  if (!desktop) return result;
  for (const auto& record : *reader_.windows(detail)) {
    if (record.desktop == desktop || record.desktop == allDesktops) result.push_back(record.window);
  }
  return result;
}

std::optional<std::vector<SpaceID>> X11WindowServer::copySpacesForWindows(int /*mask*/,
                                                                          std::span<const WindowID> windows) {
  auto& channel = connection_.requests();
  const auto root = reader_.root(RootDetail::desktops);
  std::vector<xcb_get_property_cookie_t> cookies;
  for (const auto window : windows)
    cookies.push_back(askProperty(channel, window, connection_.atoms().netWmDesktop, 1));
  std::set<SpaceID> spaces;
  for (const auto cookie : cookies) {
    const auto desktop = firstItem(channel.await<xcb_get_property_reply>(cookie));
    if (desktop == allDesktops) {
      spaces.insert(root->spaces.begin(), root->spaces.end());
    } else if (desktop && *desktop < root->desktopCount) {
      spaces.insert(root->spaceOf(*desktop));
    }
  }
  return std::vector<SpaceID>(spaces.begin(), spaces.end());
}

void X11WindowServer::moveWindowsToManagedSpace(std::span<const WindowID> windows, SpaceID space) {
  move(windows, space);
}

void X11WindowServer::addWindowsToSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) {
  if (!spaces.empty()) move(windows, spaces.back());
}

void X11WindowServer::removeWindowsFromSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) {
  std::vector<SpaceID> remaining;
  const auto root = numbering();
  for (const SpaceID space : root->spaces) {
    if (std::find(spaces.begin(), spaces.end(), space) == spaces.end()) remaining.push_back(space);
  }
  if (remaining.size() != 1) return;
  std::vector<WindowID> sticky;
  for (const auto& record : readWindows(connection_, windows, WindowDetail::desktops)) {
    if (record.desktop == allDesktops) sticky.push_back(record.window);
  }
  move(sticky, remaining.front());
}

std::int32_t X11WindowServer::spaceSetCompatID(SpaceID space, std::int32_t compatID) {
  if (!areKnown({&space, 1})) return badValue;
  const std::lock_guard lock(compatMutex_);
  std::erase_if(compatIDs_, [&](const auto& entry) { return entry.second == space; });
  if (compatID != 0) compatIDs_[compatID] = space;
  return 0;
}

std::int32_t X11WindowServer::setWindowListWorkspace(std::span<const WindowID> windows, std::int32_t compatID) {
  SpaceID space = 0;
  {
    const std::lock_guard lock(compatMutex_);
    if (const auto found = compatIDs_.find(compatID); found != compatIDs_.end()) space = found->second;
  }
  return move(windows, space) ? 0 : badValue;
}

bool X11WindowServer::performBridged(const BridgedOperation& operation) {
  return std::visit(Overloaded{[&](const ShowSpaces& show) { return areKnown(show.spaces); },
                               [&](const SetCurrentSpace& set) { return switchTo(set.display, set.space); },
                               [&](const HideSpaces&) { return numbering()->managed(); },
                               [&](const MoveWindowsToSpace& moving) { return move(moving.windows, moving.space); }},
                    operation);
}

bool X11WindowServer::addSpace(std::string_view display) {
  const auto area = countableArea(display);
  return area && desktopCount_.add(*area);
}

bool X11WindowServer::removeSpace(std::string_view display, SpaceID space) {
  const auto area = countableArea(display);
  return area && desktopCount_.remove(*area, space);
}

std::optional<PixelRect> X11WindowServer::countableArea(std::string_view display) {
  const auto view = this->view();
  const auto monitor = view.layout->find(display);
  // The number says nothing of a monitor: one that has desktops of its own might not be the one that loses one.
  if (!monitor || (view.map.perMonitor && !view.root->isI3())) return std::nullopt;
  return view.layout->monitors[*monitor].area;
}

bool X11WindowServer::carriesHeldWindows() {
  const auto name = windowManagerName();
  return name && takesHeldWindowsAlong(*name);
}

std::optional<std::string> X11WindowServer::windowManagerName() {
  const auto root = reader_.root(RootDetail::desktops);
  if (!root->managed()) return std::nullopt;
  return root->managerName.empty() ? "a window manager without a name" : root->managerName;
}

void X11WindowServer::noteVisibleDesktops() {
  view();
}

X11WindowServer::Sight X11WindowServer::sight() {
  const auto view = this->view();
  Sight sight;
  sight.managed_ = view.root->managed();
  sight.perMonitor_ = view.map.perMonitor;
  sight.current_ = view.root->current;
  return sight;
}

bool X11WindowServer::Sight::isVisible(const WindowRecord& window) const {
  if (!window.viewable || window.hidden) return false;
  if (!managed_ || !window.desktop || *window.desktop == allDesktops) return true;
  // On a monitor of its own a desktop with a viewable window is the one shown.
  return perMonitor_ || current_ == window.desktop;
}

Reader::Root X11WindowServer::numbering() {
  // While events are watched they keep it right; a switch then costs no question.
  if (!pump_.watching()) reader_.forget();
  return reader_.numbering();
}

bool X11WindowServer::areKnown(std::span<const SpaceID> spaces) {
  const auto root = numbering();
  return root->managed() &&
         std::all_of(spaces.begin(), spaces.end(), [&](SpaceID space) { return root->desktopOf(space).has_value(); });
}

bool X11WindowServer::switchTo(std::string_view display, SpaceID space) {
  const auto root = numbering();
  const auto desktop = root->desktopOf(space);
  if (!screens_.layout()->find(display) || !root->managed() || !desktop) return false;
  connection_.sendToRoot(connection_.root(), connection_.atoms().netCurrentDesktop,
                         {*desktop, connection_.timestamp()});
  return true;
}

bool X11WindowServer::move(std::span<const WindowID> windows, SpaceID space) {
  const auto root = numbering();
  const auto desktop = root->desktopOf(space);
  if (!root->managed() || !desktop) return false;
  const auto& atoms = connection_.atoms();
  auto& channel = connection_.requests();
  std::vector<std::pair<xcb_window_t, xcb_get_property_cookie_t>> states;
  for (const auto window : windows) {
    connection_.sendToRoot(window, atoms.netWmDesktop, {*desktop, fromPager});
    if (!isKnownNotSticky(window)) states.emplace_back(window, askProperty(channel, window, atoms.netWmState));
  }
  // i3 keeps a window on every desktop that has this state, wherever it is sent. Looked at when the window is on its
  // way: hardly any has it, and to take it away from all would hold up each.
  for (const auto& [window, cookie] : states) {
    const auto reply = channel.await<xcb_get_property_reply>(cookie);
    const auto state = items(reply);
    if (std::find(state.begin(), state.end(), atoms.netWmStateSticky) == state.end()) continue;
    connection_.sendToRoot(window, atoms.netWmState, {removeState, atoms.netWmStateSticky, 0, fromPager});
    connection_.sendToRoot(window, atoms.netWmDesktop, {*desktop, fromPager});
  }
  return true;
}

bool X11WindowServer::isKnownNotSticky(xcb_window_t window) {
  const auto* active = reader_.knownActive();
  return active != nullptr && active->window && active->window->window == window && !active->window->sticky;
}

}  // namespace tessaspaces
