#include "platform/simulated/WorldRules.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/Fatal.h"

namespace tessaspaces::rules {

namespace {

/// A focus that nobody can see is no focus; layer 0 is where ordinary windows are.
bool canHaveFocus(const SimulatedWindow& window) {
  return window.reported.layer.value_or(0) == 0;
}

void setFocus(WorldState& state, const SimulatedWindow* window) {
  state.focused = window ? std::optional(window->id) : std::nullopt;
  state.frontmost = window ? std::optional(window->pid) : std::nullopt;
}

void shift(Rect& rect, Point by) {
  rect.x += by.x;
  rect.y += by.y;
}

/// Puts the first display at the origin again, and windows that lie on no display onto the first one.
void settleGeometry(WorldState& state) {
  if (state.displays.empty()) return;
  const auto origin = state.displays.front().bounds;
  for (auto& display : state.displays) {
    shift(display.bounds, {-origin.x, -origin.y});
    shift(display.visibleBounds, {-origin.x, -origin.y});
  }
  for (auto& window : state.windows) {
    if (!window.reported.bounds) continue;
    auto& bounds = *window.reported.bounds;
    bounds.x = bounds.x.value_or(0) - origin.x;
    bounds.y = bounds.y.value_or(0) - origin.y;
    const Rect frame{*bounds.x, *bounds.y, bounds.width.value_or(1), bounds.height.value_or(1)};
    const bool onSomeDisplay = std::any_of(state.displays.begin(), state.displays.end(),
                                           [&](const auto& display) { return display.bounds.intersects(frame); });
    if (!onSomeDisplay) {
      bounds.x = 0;
      bounds.y = 0;
    }
  }
}

}  // namespace

void addDisplay(WorldState& state, DisplaySetup setup) {
  if (state.display(setup.name)) fatal("a simulated display '" + setup.name + "' exists already");
  SimulatedDisplay display;
  display.name = std::move(setup.name);
  const auto nextNumber = static_cast<DisplayID>(state.displayNumbers.size() + 1);
  display.number = state.displayNumbers.emplace(display.name, nextNumber).first->second;
  const Point beside =
      state.displays.empty() ? Point{} : Point{state.displays.back().bounds.maxX(), state.displays.back().bounds.y};
  const auto topLeft = state.displays.empty() ? Point{} : setup.topLeft.value_or(beside);
  display.bounds = {topLeft.x, topLeft.y, setup.size.width, setup.size.height};
  display.visibleBounds = display.bounds;
  display.visibleBounds.y += setup.panelHeight;
  display.visibleBounds.height -= setup.panelHeight;
  display.scale = setup.scale;
  display.builtIn = setup.builtIn;
  for (auto& space : setup.spaces) addSpace(state, display, std::move(space));
  if (setup.current < display.spaces.size()) display.current = display.spaces[setup.current].id;
  state.displays.push_back(std::move(display));
}

void removeDisplay(WorldState& state, std::string_view name) {
  const auto position = std::find_if(state.displays.begin(), state.displays.end(),
                                     [&](const auto& display) { return display.name == name; });
  if (position == state.displays.end()) return;
  const auto removed = std::move(*position);
  state.displays.erase(position);
  for (auto& display : state.displays) {
    if (display.mirrors == removed.number) display.mirrors = 0;
  }
  if (!state.displays.empty()) {
    auto& heir = state.displays.front().spaces;
    heir.insert(heir.end(), removed.spaces.begin(), removed.spaces.end());
  }
  settleGeometry(state);
}

SpaceID addSpace(WorldState& state, SimulatedDisplay& display, SpaceSetup setup) {
  SimulatedSpace space;
  space.id = state.nextSpace++;
  auto uuid = setup.uuid.value_or("UUID-" + std::to_string(space.id));
  space.reported.id64 = space.id;
  space.reported.managedSpaceID = space.id;
  space.reported.type = setup.type;
  if (!setup.name.empty()) space.reported.name = std::move(setup.name);
  if (!uuid.empty()) space.reported.uuid = std::move(uuid);
  display.spaces.push_back(std::move(space));
  if (display.current == 0) display.current = display.spaces.back().id;
  return display.spaces.back().id;
}

void removeSpace(WorldState& state, SpaceID space) {
  auto* display = state.displayOf(space);
  if (!display) return;
  auto& spaces = display->spaces;
  if (spaces.size() == 1) fatal("a simulated display keeps at least one space");
  const auto position = std::find_if(spaces.begin(), spaces.end(), [&](const auto& each) { return each.id == space; });
  const auto heir = position == spaces.begin() ? std::next(position)->id : std::prev(position)->id;
  for (auto& window : state.windows) {
    const bool heldHeir = std::find(window.spaces.begin(), window.spaces.end(), heir) != window.spaces.end();
    if (heldHeir) {
      std::erase(window.spaces, space);
    } else {
      std::replace(window.spaces.begin(), window.spaces.end(), space, heir);
    }
  }
  std::erase_if(state.compatibilityIDs, [&](const auto& entry) { return entry.second == space; });
  spaces.erase(position);
  if (display->current == space) show(state, heir);
}

void show(WorldState& state, SpaceID space) {
  auto* display = state.displayOf(space);
  if (!display || display->current == space) return;
  const auto left = std::exchange(display->current, space);
  if (auto* dragged = state.drag && state.drag->start ? state.window(state.drag->window) : nullptr) {
    if (state.carriesDraggedWindow && !dragged->sticky && dragged->isOn(left)) {
      dragged->spaces = {space};
      return focus(state, dragged->id);
    }
    state.drag.reset();
  }
  const auto front = std::find_if(state.windows.begin(), state.windows.end(), [&](const auto& window) {
    return canHaveFocus(window) && !window.sticky && window.isOn(space);
  });
  if (front != state.windows.end()) setFocus(state, &*front);
}

WindowID addWindow(WorldState& state, WindowSetup setup) {
  SimulatedWindow window;
  window.id = state.nextWindow++;
  window.pid = setup.pid;
  window.sticky = setup.sticky;
  window.desktopElement = setup.desktopElement;
  const auto space = setup.space != 0 || state.displays.empty() ? setup.space : state.displays.front().current;
  if (space != 0) window.spaces = {space};
  window.reported = {setup.layer,
                     setup.pid,
                     window.id,
                     std::move(setup.title),
                     WindowBounds{setup.bounds.x, setup.bounds.y, setup.bounds.width, setup.bounds.height},
                     setup.fullScreen};
  state.windows.insert(state.windows.begin(), std::move(window));
  return state.windows.front().id;
}

void removeWindow(WorldState& state, WindowID window) {
  std::erase_if(state.windows, [&](const auto& each) { return each.id == window; });
}

void place(WorldState& state, std::span<const WindowID> windows, SpaceID space) {
  if (!state.space(space)) return;
  for (const auto id : windows) {
    if (auto* window = state.window(id)) {
      window->spaces = {space};
      window->sticky = false;
    }
  }
}

void addToSpaces(WorldState& state, std::span<const WindowID> windows, std::span<const SpaceID> spaces) {
  for (const auto id : windows) {
    auto* window = state.window(id);
    if (!window || window->sticky) continue;
    for (const auto space : spaces) {
      if (state.space(space) && !window->isOn(space)) window->spaces.push_back(space);
    }
  }
}

void removeFromSpaces(WorldState& state, std::span<const WindowID> windows, std::span<const SpaceID> spaces) {
  for (const auto id : windows) {
    auto* window = state.window(id);
    if (!window || window->sticky) continue;
    for (const auto space : spaces) {
      if (window->spaces.size() > 1) std::erase(window->spaces, space);
    }
  }
}

void focus(WorldState& state, WindowID id) {
  const auto position =
      std::find_if(state.windows.begin(), state.windows.end(), [&](const auto& window) { return window.id == id; });
  if (position == state.windows.end()) return;
  std::rotate(state.windows.begin(), position, std::next(position));
  const auto& window = state.windows.front();
  if (!state.isVisible(window) && !window.spaces.empty()) show(state, window.spaces.front());
  setFocus(state, &window);
}

void activate(WorldState& state, std::int32_t pid) {
  const auto front = std::find_if(state.windows.begin(), state.windows.end(),
                                  [&](const auto& window) { return window.pid == pid && canHaveFocus(window); });
  if (front != state.windows.end()) return focus(state, front->id);
  state.focused.reset();
  state.frontmost = pid;
}

void settleFocus(WorldState& state) {
  if (!state.focused) return;
  const auto* focused = state.window(*state.focused);
  if (focused && state.isVisible(*focused)) return;
  const auto front = std::find_if(state.windows.begin(), state.windows.end(),
                                  [&](const auto& window) { return canHaveFocus(window) && state.isVisible(window); });
  setFocus(state, front == state.windows.end() ? nullptr : &*front);
}

}  // namespace tessaspaces::rules
