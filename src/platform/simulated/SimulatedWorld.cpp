#include "platform/simulated/SimulatedWorld.h"

#include <algorithm>
#include <array>

#include "base/Fatal.h"
#include "platform/simulated/WorldChanges.h"
#include "platform/simulated/WorldRules.h"

namespace tessaspaces {

namespace {

SimulatedDisplay& known(WorldState& state, std::string_view display) {
  auto* found = state.display(display);
  if (!found) fatal("there is no simulated display '" + std::string(display) + "'");
  return *found;
}

}  // namespace

SimulatedWorld::SimulatedWorld(Dispatch& dispatch, Later later) : dispatch_(dispatch), later_(std::move(later)) {}

void SimulatedWorld::addDisplay(DisplaySetup setup) {
  edit([&](WorldState& state) { rules::addDisplay(state, std::move(setup)); });
}

void SimulatedWorld::removeDisplay(std::string_view name) {
  edit([&](WorldState& state) {
    known(state, name);
    rules::removeDisplay(state, name);
  });
}

void SimulatedWorld::resizeDisplay(std::string_view name, Size size) {
  edit([&](WorldState& state) {
    auto& display = known(state, name);
    display.visibleBounds.width += size.width - display.bounds.width;
    display.visibleBounds.height += size.height - display.bounds.height;
    display.bounds.width = size.width;
    display.bounds.height = size.height;
  });
}

void SimulatedWorld::moveDisplay(std::string_view name, Point topLeft) {
  edit([&](WorldState& state) {
    auto& display = known(state, name);
    if (&display == &state.displays.front()) fatal("the first simulated display is the origin");
    display.visibleBounds.x += topLeft.x - display.bounds.x;
    display.visibleBounds.y += topLeft.y - display.bounds.y;
    display.bounds.x = topLeft.x;
    display.bounds.y = topLeft.y;
  });
}

void SimulatedWorld::mirrorDisplay(std::string_view name, std::string_view master) {
  edit([&](WorldState& state) {
    auto& display = known(state, name);
    display.mirrors = master.empty() ? 0 : known(state, master).number;
  });
}

SpaceID SimulatedWorld::addSpace(std::string_view display, SpaceSetup setup) {
  SpaceID added = 0;
  edit([&](WorldState& state) { added = rules::addSpace(state, known(state, display), std::move(setup)); });
  return added;
}

void SimulatedWorld::removeSpace(SpaceID space) {
  edit([&](WorldState& state) { rules::removeSpace(state, space); });
}

void SimulatedWorld::setSpaceCount(std::string_view display, std::size_t count) {
  edit([&](WorldState& state) {
    auto& changed = known(state, display);
    while (changed.spaces.size() < count) rules::addSpace(state, changed, {});
    while (changed.spaces.size() > count) rules::removeSpace(state, changed.spaces.back().id);
  });
}

void SimulatedWorld::showSpace(SpaceID space) {
  edit([&](WorldState& state) { rules::show(state, space); });
}

SpaceID SimulatedWorld::spaceNamed(std::string_view name) const {
  const auto now = state();
  for (const auto& display : now->displays) {
    for (const auto& space : display.spaces) {
      if (space.reported.name == name) return space.id;
    }
  }
  return 0;
}

SpaceID SimulatedWorld::currentSpace(std::string_view display) const {
  const auto now = state();
  const auto* found = now->display(display);
  return found ? found->current : 0;
}

WindowID SimulatedWorld::addWindow(WindowSetup setup) {
  WindowID added = 0;
  edit([&](WorldState& state) { added = rules::addWindow(state, std::move(setup)); });
  return added;
}

void SimulatedWorld::removeWindow(WindowID window) {
  edit([&](WorldState& state) { rules::removeWindow(state, window); });
}

void SimulatedWorld::placeWindow(WindowID window, SpaceID space) {
  edit([&](WorldState& state) { rules::place(state, std::array{window}, space); });
}

void SimulatedWorld::focusWindow(WindowID window) {
  edit([&](WorldState& state) { rules::focus(state, window); });
}

std::vector<SpaceID> SimulatedWorld::spacesOf(WindowID window) const {
  const auto now = state();
  const auto* found = now->window(window);
  return found ? found->spaces : std::vector<SpaceID>{};
}

void SimulatedWorld::addApplication(ApplicationInfo info, ImageRef icon) {
  edit([&](WorldState& state) {
    std::erase_if(state.applications, [&](const auto& each) { return each.info.pid == info.pid; });
    state.applications.push_back({std::move(info), std::move(icon)});
  });
}

void SimulatedWorld::removeApplication(std::int32_t pid) {
  edit([&](WorldState& state) {
    std::erase_if(state.applications, [&](const auto& each) { return each.info.pid == pid; });
    std::erase_if(state.windows, [&](const auto& each) { return each.pid == pid; });
    if (state.frontmost == pid && !state.focused) state.frontmost.reset();
  });
}

void SimulatedWorld::setFrontmost(std::optional<std::int32_t> pid) {
  edit([&](WorldState& state) {
    state.focused.reset();
    state.frontmost = pid;
  });
}

void SimulatedWorld::setPointer(Point pointer) {
  edit([&](WorldState& state) { state.pointer = pointer; });
}

void SimulatedWorld::setWindowManager(std::optional<std::string> name) {
  edit([&](WorldState& state) { state.windowManager = std::move(name); });
}

void SimulatedWorld::edit(const std::function<void(WorldState&)>& change) {
  const std::lock_guard guard(lock_);
  auto after = std::make_shared<WorldState>(*state_);
  change(*after);
  rules::settleFocus(*after);
  const auto before = std::exchange(state_, after);
  if (spacesDiffer(*before, *after)) announce(WorldEvent::spaces);
  if (windowsDiffer(*before, *after)) announce(WorldEvent::windows);
  if (screensDiffer(*before, *after)) announce(WorldEvent::screens);
  if (before->windowManager != after->windowManager) announce(WorldEvent::windowManager);
}

void SimulatedWorld::editLater(Duration delay, std::function<void(WorldState&)> change) {
  later_(delay, [this, change = std::move(change)] { edit(change); });
}

std::shared_ptr<const WorldState> SimulatedWorld::state() const {
  const std::lock_guard guard(lock_);
  return state_;
}

void SimulatedWorld::announce(WorldEvent event) {
  if (!announced_.insert(event).second) return;
  dispatch_.async([this, event] {
    {
      const std::lock_guard guard(lock_);
      announced_.erase(event);
    }
    if (observer_) observer_(event);
  });
}

}  // namespace tessaspaces
