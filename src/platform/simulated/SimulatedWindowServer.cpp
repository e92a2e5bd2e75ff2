#include "platform/simulated/SimulatedWindowServer.h"

#include <algorithm>
#include <utility>

#include "platform/simulated/WorldRules.h"

namespace tessaspaces {

namespace {

template <class Number>
std::string listed(std::span<const Number> numbers) {
  std::string text = "[";
  for (const auto number : numbers) {
    if (text.size() > 1) text += ", ";
    text += std::to_string(number);
  }
  return text + "]";
}

template <class Number>
std::string listed(const std::vector<Number>& numbers) {
  return listed(std::span<const Number>(numbers));
}

std::string listed(std::string_view display, SpaceID space) {
  return std::string(display) + ", " + std::to_string(space);
}

std::vector<WindowID> copied(std::span<const WindowID> windows) {
  return {windows.begin(), windows.end()};
}

ManagedDisplay described(const SimulatedDisplay& display) {
  ManagedDisplay description;
  if (display.reportsIdentifier) description.displayIdentifier = display.name;
  std::vector<ManagedSpace> spaces;
  for (const auto& space : display.spaces) {
    spaces.push_back(space.reported);
    if (space.id == display.current && display.reportsCurrentSpace) description.currentSpace = space.reported;
  }
  if (display.reportsSpaces) description.spaces = std::move(spaces);
  return description;
}

// Without a window manager nobody knows of spaces: every query is unanswered, every request refused.

bool displayHas(const WorldState& state, std::string_view display, SpaceID space) {
  const auto* found = state.display(display);
  return state.windowManager && found && found->has(space);
}

bool isKnown(const WorldState& state, SpaceID space) {
  return state.windowManager && state.space(space);
}

bool allKnown(const WorldState& state, const std::vector<SpaceID>& spaces) {
  return state.windowManager &&
         std::all_of(spaces.begin(), spaces.end(), [&](SpaceID space) { return isKnown(state, space); });
}

/// The effect of moving windows to one space.
auto placing(std::vector<WindowID> windows, SpaceID space) {
  return [windows = std::move(windows), space](WorldState& state) {
    if (isKnown(state, space)) rules::place(state, windows, space);
  };
}

}  // namespace

std::int32_t SimulatedWindowServer::mainConnectionID() {
  world_.ask(Operation::mainConnectionID);
  return 1;
}

std::optional<std::vector<ManagedDisplay>> SimulatedWindowServer::copyManagedDisplaySpaces() {
  if (!world_.ask(Operation::copyManagedDisplaySpaces)) return std::nullopt;
  const auto state = world_.view();
  if (!state->windowManager) return std::nullopt;
  std::vector<ManagedDisplay> displays;
  for (const auto& display : state->displays) {
    if (display.mirrors == 0) displays.push_back(described(display));
  }
  return displays;
}

SpaceID SimulatedWindowServer::managedDisplayGetCurrentSpace(std::string_view display) {
  if (!world_.ask(Operation::managedDisplayGetCurrentSpace, display)) return 0;
  const auto state = world_.view();
  const auto* found = state->display(display);
  return found && state->windowManager ? found->current : 0;
}

void SimulatedWindowServer::managedDisplaySetCurrentSpace(std::string_view display, SpaceID space) {
  requestSwitch(Operation::managedDisplaySetCurrentSpace, display, space);
}

void SimulatedWindowServer::requestSwitch(Operation operation, std::string_view display, SpaceID space) {
  const auto faults = world_.faults();
  const auto elsewhere = faults.landsOn.find(operation);
  const auto target = elsewhere == faults.landsOn.end() ? space : elsewhere->second;
  world_.request(operation, listed(display, space), [target, name = std::string(display)](WorldState& state) {
    if (displayHas(state, name, target)) rules::show(state, target);
  });
}

std::optional<std::vector<WindowID>> SimulatedWindowServer::copyWindowsOnSpace(SpaceID space) {
  if (!world_.ask(Operation::copyWindowsOnSpace, std::to_string(space))) return std::nullopt;
  const auto state = world_.view();
  if (!state->windowManager) return std::nullopt;
  std::vector<WindowID> windows;
  if (!state->space(space)) return windows;
  for (const auto& window : state->windows) {
    if (window.isOn(space)) windows.push_back(window.id);
  }
  return windows;
}

std::optional<std::vector<SpaceID>> SimulatedWindowServer::copySpacesForWindows(int mask,
                                                                                std::span<const WindowID> windows) {
  if (!world_.ask(Operation::copySpacesForWindows, std::to_string(mask) + ", " + listed(windows))) return std::nullopt;
  std::vector<SpaceID> spaces;
  const auto state = world_.view();
  for (const auto& display : state->displays) {
    for (const auto& space : display.spaces) {
      const bool holdsOne = std::any_of(windows.begin(), windows.end(), [&](WindowID id) {
        const auto* window = state->window(id);
        return window && window->isOn(space.id);
      });
      if (holdsOne) spaces.push_back(space.id);
    }
  }
  return spaces;
}

void SimulatedWindowServer::moveWindowsToManagedSpace(std::span<const WindowID> windows, SpaceID space) {
  world_.request(Operation::moveWindowsToManagedSpace, listed(windows) + ", " + std::to_string(space),
                 placing(copied(windows), space));
}

void SimulatedWindowServer::addWindowsToSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) {
  world_.request(Operation::addWindowsToSpaces, listed(windows) + ", " + listed(spaces),
                 [windows = copied(windows), spaces = std::vector(spaces.begin(), spaces.end())](WorldState& state) {
                   rules::addToSpaces(state, windows, spaces);
                 });
}

void SimulatedWindowServer::removeWindowsFromSpaces(std::span<const WindowID> windows,
                                                    std::span<const SpaceID> spaces) {
  world_.request(Operation::removeWindowsFromSpaces, listed(windows) + ", " + listed(spaces),
                 [windows = copied(windows), spaces = std::vector(spaces.begin(), spaces.end())](WorldState& state) {
                   rules::removeFromSpaces(state, windows, spaces);
                 });
}

std::int32_t SimulatedWindowServer::spaceSetCompatID(SpaceID space, std::int32_t compatID) {
  const bool known = isKnown(*world_.state(), space);
  world_.request(Operation::spaceSetCompatID, std::to_string(space) + ", " + std::to_string(compatID),
                 [space, compatID](WorldState& state) {
                   std::erase_if(state.compatibilityIDs, [&](const auto& entry) { return entry.second == space; });
                   if (compatID != 0 && state.space(space)) state.compatibilityIDs[compatID] = space;
                 });
  return known ? noError : illegalArgument;
}

std::int32_t SimulatedWindowServer::setWindowListWorkspace(std::span<const WindowID> windows, std::int32_t compatID) {
  const auto now = world_.state();
  const auto named = now->compatibilityIDs.find(compatID);
  const auto space = named == now->compatibilityIDs.end() ? SpaceID{0} : named->second;
  world_.request(Operation::setWindowListWorkspace, listed(windows) + ", " + std::to_string(compatID),
                 placing(copied(windows), space));
  return space == 0 ? illegalArgument : noError;
}

bool SimulatedWindowServer::performBridged(const BridgedOperation& operation) {
  return std::visit([this](const auto& each) { return perform(each); }, operation);
}

bool SimulatedWindowServer::offers(Operation operation, std::string_view arguments) {
  if (!world_.faults().unavailable.contains(operation)) return true;
  world_.ask(operation, arguments);
  return false;
}

bool SimulatedWindowServer::perform(const ShowSpaces& operation) {
  // A window is seen where its space is current: nothing to do beyond that.
  world_.ask(Operation::bridgedShowSpaces, listed(operation.spaces));
  return !world_.faults().unavailable.contains(Operation::bridgedShowSpaces) &&
         allKnown(*world_.state(), operation.spaces);
}

bool SimulatedWindowServer::perform(const HideSpaces& operation) {
  world_.ask(Operation::bridgedHideSpaces, listed(operation.spaces));
  // A space to hide may be gone by now: that hides it as well.
  return !world_.faults().unavailable.contains(Operation::bridgedHideSpaces) &&
         world_.state()->windowManager.has_value();
}

bool SimulatedWindowServer::perform(const SetCurrentSpace& operation) {
  if (!offers(Operation::bridgedSetCurrentSpace, listed(operation.display, operation.space))) return false;
  const bool known = displayHas(*world_.state(), operation.display, operation.space);
  requestSwitch(Operation::bridgedSetCurrentSpace, operation.display, operation.space);
  return known;
}

bool SimulatedWindowServer::perform(const MoveWindowsToSpace& operation) {
  const auto arguments = listed(operation.windows) + ", " + std::to_string(operation.space);
  if (!offers(Operation::bridgedMoveWindows, arguments)) return false;
  const bool known = isKnown(*world_.state(), operation.space);
  world_.request(Operation::bridgedMoveWindows, arguments, placing(operation.windows, operation.space));
  return known;
}

bool SimulatedWindowServer::addSpace(std::string_view display) {
  if (!offers(Operation::addSpace, display)) return false;
  const auto now = world_.state();
  const bool known = now->windowManager && now->display(display);
  world_.request(Operation::addSpace, display, [name = std::string(display)](WorldState& state) {
    auto* found = state.display(name);
    if (state.windowManager && found) rules::addSpace(state, *found, {});
  });
  return known;
}

bool SimulatedWindowServer::removeSpace(std::string_view display, SpaceID space) {
  if (!offers(Operation::removeSpace, listed(display, space))) return false;
  const auto canGo = [name = std::string(display), space](const WorldState& state) {
    return displayHas(state, name, space) && state.display(name)->spaces.size() > 1;
  };
  const bool possible = canGo(*world_.state());
  world_.request(Operation::removeSpace, listed(display, space), [canGo, space](WorldState& state) {
    if (canGo(state)) rules::removeSpace(state, space);
  });
  return possible;
}

std::unique_ptr<ReadScope> SimulatedWindowServer::beginRead() {
  return world_.openReadScope();
}

std::optional<std::string> SimulatedWindowServer::windowManagerName() {
  if (!world_.ask(Operation::windowManagerName)) return std::nullopt;
  return world_.state()->windowManager;
}

bool SimulatedWindowServer::carriesHeldWindows() {
  return offers(Operation::carriesHeldWindows, {});
}

void SimulatedWindowServer::setDesktopLayout(int rows, int columns) {
  world_.ask(Operation::setDesktopLayout, std::to_string(rows) + ", " + std::to_string(columns));
}

}  // namespace tessaspaces
