#pragma once

#include "platform/AccessibilityWindows.h"
#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// The windows of a simulated world, one by one.
class SimulatedAccessibility final : public AccessibilityWindows {
 public:
  explicit SimulatedAccessibility(SimulatedWorld& world) : world_(world) {}
  std::unique_ptr<AccessibilityWindow> find(std::int32_t pid, WindowID window) override;

 private:
  SimulatedWorld& world_;
};

}  // namespace tessaspaces
