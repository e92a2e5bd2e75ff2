// The mouse among the rules of a simulated world.
#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/simulated/WorldRules.h"

namespace tessaspaces::rules {

namespace {

constexpr double titleBarHeight = 22;
/// How far the pointer goes before a press becomes a drag; window managers want 1 to 10 points.
constexpr double dragThreshold = 8;

std::optional<Rect> boundsOf(const SimulatedWindow& window) {
  const auto& bounds = window.reported.bounds;
  if (!bounds) return std::nullopt;
  return Rect{bounds->x.value_or(0), bounds->y.value_or(0), bounds->width.value_or(0), bounds->height.value_or(0)};
}

double heightOfFirst(const WorldState& state) {
  return state.displays.empty() ? 0 : state.displays.front().bounds.height;
}

/// The nearest pixel of any display.
Point onDisplays(const WorldState& state, Point point) {
  Point nearest = point;
  double least = std::numeric_limits<double>::infinity();
  for (const auto& display : state.displays) {
    const auto& area = display.bounds;
    const Point inside{std::clamp(point.x, area.minX(), area.maxX() - 1),
                       std::clamp(point.y, area.minY(), area.maxY() - 1)};
    const double distance = std::hypot(inside.x - point.x, inside.y - point.y);
    if (distance < least) {
      least = distance;
      nearest = inside;
    }
  }
  return nearest;
}

}  // namespace

std::optional<Rect> titleBar(const SimulatedWindow& window) {
  auto bar = boundsOf(window);
  if (!bar || window.reported.layer.value_or(0) != 0) return std::nullopt;
  bar->height = std::min(bar->height, titleBarHeight);
  return bar;
}

const SimulatedWindow* windowAt(const WorldState& state, Point point) {
  const auto position = std::find_if(state.windows.begin(), state.windows.end(), [&](const auto& window) {
    const auto bounds = boundsOf(window);
    return bounds && bounds->contains(point) && state.isVisible(window);
  });
  return position == state.windows.end() ? nullptr : &*position;
}

void setBounds(WorldState& state, WindowID id, const Rect& bounds) {
  if (auto* window = state.window(id)) {
    window->reported.bounds = WindowBounds{bounds.x, bounds.y, bounds.width, bounds.height};
  }
}

Point pointerFromTop(const WorldState& state) {
  return {state.pointer.x, heightOfFirst(state) - 1 - state.pointer.y};
}

void movePointer(WorldState& state, Point to) {
  const auto reached = onDisplays(state, to);
  state.pointer = {reached.x, heightOfFirst(state) - 1 - reached.y};
  if (!state.drag) return;
  auto* window = state.window(state.drag->window);
  const auto bounds = window ? boundsOf(*window) : std::nullopt;
  if (!bounds) return state.drag.reset();
  const Point way{state.pointer.x - state.drag->from.x, state.drag->from.y - state.pointer.y};
  if (!state.drag->start && std::hypot(way.x, way.y) < dragThreshold) return;
  if (!state.drag->start) state.drag->start = Point{bounds->x, bounds->y};
  setBounds(state, window->id,
            {state.drag->start->x + way.x, state.drag->start->y + way.y, bounds->width, bounds->height});
}

void press(WorldState& state) {
  if (std::exchange(state.mousePressed, true)) return;
  const auto point = pointerFromTop(state);
  const auto* window = windowAt(state, point);
  if (!window) return;
  const auto bar = titleBar(*window);
  if (bar && bar->contains(point)) state.drag = SimulatedDrag{window->id, state.pointer, std::nullopt};
  if (bar) focus(state, window->id);
}

void release(WorldState& state) {
  state.mousePressed = false;
  state.drag.reset();
}

}  // namespace tessaspaces::rules
