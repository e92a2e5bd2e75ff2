#include "platform/simulated/WorldState.h"

#include <algorithm>

namespace tessaspaces {

namespace {

template <class List, class Test>
auto firstOf(List& list, Test test) -> decltype(list.data()) {
  const auto position = std::find_if(list.begin(), list.end(), test);
  return position == list.end() ? nullptr : &*position;
}

}  // namespace

bool SimulatedDisplay::has(SpaceID space) const {
  return std::any_of(spaces.begin(), spaces.end(), [&](const auto& candidate) { return candidate.id == space; });
}

bool SimulatedWindow::isOn(SpaceID space) const {
  return sticky || std::find(spaces.begin(), spaces.end(), space) != spaces.end();
}

const SimulatedDisplay* WorldState::display(std::string_view name) const {
  return firstOf(displays, [&](const auto& display) { return display.name == name; });
}

SimulatedDisplay* WorldState::display(std::string_view name) {
  return firstOf(displays, [&](const auto& display) { return display.name == name; });
}

const SimulatedDisplay* WorldState::displayOf(SpaceID space) const {
  return firstOf(displays, [&](const auto& display) { return display.has(space); });
}

SimulatedDisplay* WorldState::displayOf(SpaceID space) {
  return firstOf(displays, [&](const auto& display) { return display.has(space); });
}

const SimulatedSpace* WorldState::space(SpaceID id) const {
  const auto* display = displayOf(id);
  return display ? firstOf(display->spaces, [&](const auto& space) { return space.id == id; }) : nullptr;
}

SimulatedSpace* WorldState::space(SpaceID id) {
  auto* display = displayOf(id);
  return display ? firstOf(display->spaces, [&](const auto& space) { return space.id == id; }) : nullptr;
}

const SimulatedWindow* WorldState::window(WindowID id) const {
  return firstOf(windows, [&](const auto& window) { return window.id == id; });
}

SimulatedWindow* WorldState::window(WindowID id) {
  return firstOf(windows, [&](const auto& window) { return window.id == id; });
}

const SimulatedApplication* WorldState::application(std::int32_t pid) const {
  return firstOf(applications, [&](const auto& application) { return application.info.pid == pid; });
}

bool WorldState::isVisible(const SimulatedWindow& window) const {
  return std::any_of(displays.begin(), displays.end(),
                     [&](const auto& display) { return window.isOn(display.current); });
}

const SimulatedDisplay* WorldState::displayOf(const SimulatedWindow& window) const {
  if (!window.sticky) return window.spaces.empty() ? nullptr : displayOf(window.spaces.front());
  const auto bounds = window.reported.bounds.value_or(WindowBounds{});
  const Point center{bounds.x.value_or(0) + bounds.width.value_or(0) / 2,
                     bounds.y.value_or(0) + bounds.height.value_or(0) / 2};
  return firstOf(displays, [&](const auto& display) { return display.bounds.contains(center); });
}

}  // namespace tessaspaces
