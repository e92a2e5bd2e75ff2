// The mouse of SimulatedInputEvents.
#include <cmath>
#include <string>

#include "platform/simulated/SimulatedInputEvents.h"
#include "platform/simulated/WorldRules.h"

namespace tessaspaces {

std::optional<Point> SimulatedInputEvents::mouseLocation() {
  const bool answered = world_.ask(Operation::mouseLocation);
  const auto state = world_.state();
  if (!answered || state->displays.empty()) return std::nullopt;
  return rules::pointerFromTop(*state);
}

std::optional<HeldInput> SimulatedInputEvents::held() {
  if (!world_.ask(Operation::heldInput)) return std::nullopt;
  const auto state = world_.state();
  return HeldInput{state->mousePressed || state->userHoldsButton, state->userHoldsModifier};
}

bool SimulatedInputEvents::moveMouse(Point to) {
  return act(Operation::moveMouse, std::to_string(std::lround(to.x)) + ", " + std::to_string(std::lround(to.y)),
             [to](WorldState& state) { rules::movePointer(state, to); });
}

bool SimulatedInputEvents::pressMouse() {
  return act(Operation::pressMouse, {}, rules::press);
}

bool SimulatedInputEvents::releaseMouse() {
  return act(Operation::releaseMouse, {}, rules::release);
}

bool SimulatedInputEvents::act(Operation operation, const std::string& arguments,
                               std::function<void(WorldState&)> effect) {
  if (world_.faults().unavailable.contains(operation)) {
    world_.ask(operation, arguments);
    return false;
  }
  world_.request(operation, arguments, std::move(effect));
  return true;
}

}  // namespace tessaspaces
