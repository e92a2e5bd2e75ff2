#include "platform/simulated/SimulatedAccessibility.h"

#include <sstream>
#include <string>

#include "platform/simulated/WorldRules.h"

namespace tessaspaces {

namespace {

template <class... Numbers>
std::string listed(WindowID window, Numbers... numbers) {
  std::ostringstream text;
  text << window;
  ((text << ", " << numbers), ...);
  return text.str();
}

class FoundWindow final : public AccessibilityWindow {
 public:
  FoundWindow(SimulatedWorld& world, WindowID window) : world_(world), window_(window) {}

  std::optional<Rect> frame() override {
    const auto [state, found] = look(Operation::windowFrame, listed(window_));
    if (!found || !found->reported.bounds) return std::nullopt;
    const auto& bounds = *found->reported.bounds;
    return Rect{bounds.x.value_or(0), bounds.y.value_or(0), bounds.width.value_or(0), bounds.height.value_or(0)};
  }
  std::optional<std::string> title() override {
    const auto [state, found] = look(Operation::windowTitle, listed(window_));
    return found ? found->reported.name : std::nullopt;
  }
  std::optional<Rect> titleBar() override {
    const auto [state, found] = look(Operation::windowTitleBar, listed(window_));
    return found ? rules::titleBar(*found) : std::nullopt;
  }
  bool isAt(Point point) override {
    const auto [state, found] = look(Operation::windowIsAt, listed(window_, point.x, point.y));
    return found && rules::windowAt(*state, point) == found;
  }
  bool raise() override {
    return change(Operation::raiseWindow, listed(window_),
                  [id = window_](WorldState& state) { rules::focus(state, id); });
  }
  bool place(const Rect& frame) override {
    return change(Operation::placeWindow, listed(window_, frame.x, frame.y, frame.width, frame.height),
                  [id = window_, frame](WorldState& state) { rules::setBounds(state, id, frame); });
  }
  bool close() override {
    return change(Operation::closeWindow, listed(window_),
                  [id = window_](WorldState& state) { rules::removeWindow(state, id); });
  }

 private:
  /// The window, with the state that keeps it; null when it is gone or nobody answers.
  std::pair<std::shared_ptr<const WorldState>, const SimulatedWindow*> look(Operation operation,
                                                                            const std::string& arguments) {
    const bool answered = world_.ask(operation, arguments);
    auto state = world_.state();
    const auto* found = answered ? state->window(window_) : nullptr;
    return {std::move(state), found};
  }
  bool change(Operation operation, const std::string& arguments, std::function<void(WorldState&)> effect) {
    const bool there = world_.state()->window(window_) != nullptr;
    world_.request(operation, arguments, std::move(effect));
    return there;
  }

  SimulatedWorld& world_;
  WindowID window_;
};

}  // namespace

std::unique_ptr<AccessibilityWindow> SimulatedAccessibility::find(std::int32_t pid, WindowID window) {
  const bool answered = world_.ask(Operation::findWindow, std::to_string(pid) + ", " + std::to_string(window));
  if (!answered || !permissions_.hasAccessibility()) return nullptr;
  const auto state = world_.state();
  const auto* found = state->window(window);
  if (!found || found->pid != pid) return nullptr;
  return std::make_unique<FoundWindow>(world_, window);
}

}  // namespace tessaspaces
