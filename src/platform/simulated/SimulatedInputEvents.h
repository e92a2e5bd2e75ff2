#pragma once

#include "platform/InputEvents.h"
#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// The events and the mouse of a simulated world.
class SimulatedInputEvents final : public InputEvents {
 public:
  explicit SimulatedInputEvents(SimulatedWorld& world) : world_(world) {}

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
  bool act(Operation operation, const std::string& arguments, std::function<void(WorldState&)> effect);

  SimulatedWorld& world_;
};

}  // namespace tessaspaces
