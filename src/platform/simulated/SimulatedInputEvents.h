#pragma once

#include <atomic>
#include <mutex>

#include "platform/InputEvents.h"
#include "platform/Session.h"
#include "platform/gestures/SwipeTracker.h"
#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// The events and the mouse of a simulated world. Of the events it understands swipes: each complete one takes the
/// display under the pointer to the next of its spaces on that side, full-screen ones included; at the ends, and where
/// there is no display under the pointer, it does nothing. The call log has it as "swipe(display, left)".
class SimulatedInputEvents final : public InputEvents {
 public:
  SimulatedInputEvents(SimulatedWorld& world, Preferences& preferences) : world_(world), preferences_(preferences) {}

  std::unique_ptr<InputEvent> create() override;
  std::unique_ptr<InputEvent> recreate(std::span<const std::uint8_t> data) override;
  void post(const InputEvent& event) override;
  std::uint64_t absoluteTime() override;

  std::optional<Point> mouseLocation() override;
  std::optional<HeldInput> held() override;
  bool moveMouse(Point to) override;
  bool pressMouse() override;
  bool releaseMouse() override;

 private:
  void swiped(SwipeSide side);
  void dragBack();
  bool act(Operation operation, const std::string& arguments, std::function<void(WorldState&)> effect);

  SimulatedWorld& world_;
  Preferences& preferences_;
  std::mutex lock_;  // guards tracker_
  SwipeTracker tracker_;
  std::atomic<bool> yankPending_ = false;
};

}  // namespace tessaspaces
