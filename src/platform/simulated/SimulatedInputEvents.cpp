#include "platform/simulated/SimulatedInputEvents.h"

#include <algorithm>
#include <string>

#include "platform/gestures/FieldEvent.h"
#include "platform/simulated/WorldRules.h"

namespace tessaspaces {
namespace {

/// The one whose spaces are seen under the pointer. Null when there is none.
const SimulatedDisplay* displayUnderPointer(const WorldState& state) {
  if (state.displays.empty()) return nullptr;
  const auto pointer = rules::pointerFromTop(state);
  for (const auto& display : state.displays) {
    if (!display.bounds.contains(pointer)) continue;
    const auto master = std::find_if(state.displays.begin(), state.displays.end(),
                                     [&](const auto& other) { return other.number == display.mirrors; });
    return master == state.displays.end() ? &display : &*master;
  }
  return nullptr;
}

void step(WorldState& state, std::string_view name, SwipeSide side) {
  const auto* display = state.windowManager ? state.display(name) : nullptr;
  if (!display) return;
  const auto& spaces = display->spaces;
  const auto shown =
      std::find_if(spaces.begin(), spaces.end(), [&](const auto& space) { return space.id == display->current; });
  if (shown == spaces.end()) return;
  if (side == SwipeSide::right && std::next(shown) != spaces.end()) {
    rules::show(state, std::next(shown)->id);
  } else if (side == SwipeSide::left && shown != spaces.begin()) {
    rules::show(state, std::prev(shown)->id);
  }
}

}  // namespace

std::unique_ptr<InputEvent> SimulatedInputEvents::create() {
  return world_.ask(Operation::createEvent) ? std::make_unique<FieldEvent>() : nullptr;
}

std::unique_ptr<InputEvent> SimulatedInputEvents::recreate(std::span<const std::uint8_t> data) {
  return world_.ask(Operation::recreateEvent) ? FieldEvent::fromBytes(data) : nullptr;
}

void SimulatedInputEvents::post(const InputEvent& event) {
  world_.ask(Operation::postEvent);
  if (world_.faults().ignored.contains(Operation::postEvent)) return;
  std::optional<DockSwipe> swipe;
  {
    const std::lock_guard guard(lock_);
    swipe = tracker_.take(event, absoluteTime());
  }
  if (swipe) swiped(sideOf(*swipe, preferences_.naturalScrolling()));
}

void SimulatedInputEvents::swiped(SwipeSide side) {
  const auto state = world_.state();
  const auto* display = displayUnderPointer(*state);
  if (!display) return;
  const auto* sideName = side == SwipeSide::right ? ", right" : ", left";
  world_.request(Operation::swipe, display->name + sideName,
                 [name = display->name, side](WorldState& now) { step(now, name, side); });
  dragBack();
}

void SimulatedInputEvents::dragBack() {
  if (yankPending_.exchange(true)) return;
  std::optional<SimulatedFaults::Yank> yank;
  world_.editFaults([&](SimulatedFaults& faults) {
    if (faults.yank.times == 0 || faults.ignored.contains(Operation::swipe)) return;
    --faults.yank.times;
    yank = faults.yank;
    const auto delay = faults.delayed.find(Operation::swipe);
    if (delay != faults.delayed.end()) yank->after += delay->second;
  });
  yankPending_ = yank.has_value();
  if (!yank) return;
  world_.editLater(yank->after, [this, space = yank->space](WorldState& now) {
    yankPending_ = false;
    rules::show(now, space);
  });
}

std::uint64_t SimulatedInputEvents::absoluteTime() {
  return static_cast<std::uint64_t>(world_.now().time_since_epoch().count()) + 1;  // virtual time begins at zero
}

}  // namespace tessaspaces
