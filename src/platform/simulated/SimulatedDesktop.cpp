#include "platform/simulated/SimulatedDesktop.h"

#include <algorithm>

#include "platform/simulated/WorldRules.h"

namespace tessaspaces {

namespace {

ScreenRef described(const WorldState& state, const SimulatedDisplay& display) {
  const auto primaryHeight = state.displays.front().bounds.height;
  const auto flipped = [&](const Rect& rect) {
    return Rect{rect.x, primaryHeight - rect.maxY(), rect.width, rect.height};
  };
  auto screen = std::make_shared<Screen>();
  if (display.screenHasNumber) screen->displayID = display.number;
  if (display.screenHasIdentifier) screen->uuid = display.name;
  screen->frame = flipped(display.bounds);
  screen->visibleFrame = flipped(display.visibleBounds);
  screen->scale = display.scale;
  screen->name = display.name;
  screen->builtIn = display.builtIn;
  screen->mirrors = display.mirrors;
  screen->inMirrorSet =
      display.mirrors != 0 || std::any_of(state.displays.begin(), state.displays.end(),
                                          [&](const auto& other) { return other.mirrors == display.number; });
  return screen;
}

}  // namespace

std::optional<std::vector<WindowInfo>> SimulatedWindowList::copyWindowInfo(WindowListOption option) {
  const bool onScreen = option == WindowListOption::onScreenWithoutDesktopElements;
  if (!world_.ask(Operation::copyWindowInfo, onScreen ? "onScreen" : "all")) return std::nullopt;
  std::vector<WindowInfo> list;
  const auto state = world_.view();
  for (const auto& window : state->windows) {
    if (!onScreen || (state->isVisible(window) && !window.desktopElement)) list.push_back(window.reported);
  }
  return list;
}

std::vector<ScreenRef> SimulatedScreens::screens() {
  std::vector<ScreenRef> list;
  if (!world_.ask(Operation::screens)) return list;
  const auto state = world_.view();
  for (const auto& display : state->displays) list.push_back(described(*state, display));
  return list;
}

ScreenRef SimulatedScreens::mainScreen() {
  const auto state = world_.view();
  if (state->displays.empty() || !world_.ask(Operation::screens)) return nullptr;
  const auto* focused = state->focused ? state->window(*state->focused) : nullptr;
  const auto* display = focused ? state->displayOf(*focused) : nullptr;
  return described(*state, display ? *display : state->displays.front());
}

Point SimulatedScreens::pointer() {
  return world_.state()->pointer;
}

std::optional<ApplicationInfo> SimulatedApplications::frontmost() {
  if (!world_.ask(Operation::frontmost)) return std::nullopt;
  const auto state = world_.state();
  if (!state->frontmost) return std::nullopt;
  const auto* application = state->application(*state->frontmost);
  return application ? application->info : ApplicationInfo{*state->frontmost, {}, {}};
}

std::optional<ApplicationInfo> SimulatedApplications::running(std::int32_t pid) {
  if (!world_.ask(Operation::running, std::to_string(pid))) return std::nullopt;
  const auto state = world_.state();
  const auto* application = state->application(pid);
  return application ? std::optional(application->info) : std::nullopt;
}

std::vector<ApplicationInfo> SimulatedApplications::runningWithBundleIdentifier(std::string_view identifier) {
  std::vector<ApplicationInfo> list;
  if (!world_.ask(Operation::runningWithBundleIdentifier, identifier)) return list;
  const auto state = world_.state();
  for (const auto& application : state->applications) {
    if (application.info.bundleIdentifier == identifier) list.push_back(application.info);
  }
  return list;
}

ImageRef SimulatedApplications::icon(std::int32_t pid) {
  if (!world_.ask(Operation::icon, std::to_string(pid))) return nullptr;
  const auto state = world_.state();
  const auto* application = state->application(pid);
  return application ? application->icon : nullptr;
}

bool SimulatedApplications::activate(std::int32_t pid) {
  const bool known = world_.state()->application(pid) != nullptr;
  const auto faults = world_.faults();
  const auto elsewhere = faults.landsOn.find(Operation::activate);
  const auto target = elsewhere == faults.landsOn.end() ? SpaceID{0} : elsewhere->second;
  world_.request(Operation::activate, std::to_string(pid), [pid, target](WorldState& state) {
    if (!state.application(pid)) return;
    rules::activate(state, pid);
    if (target != 0) rules::show(state, target);
  });
  return known;
}

}  // namespace tessaspaces
