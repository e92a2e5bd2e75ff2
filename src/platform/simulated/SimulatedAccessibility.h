#pragma once

#include "platform/AccessibilityWindows.h"
#include "platform/Session.h"
#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// The windows of a simulated world, one by one.
class SimulatedAccessibility final : public AccessibilityWindows {
 public:
  SimulatedAccessibility(SimulatedWorld& world, Permissions& permissions) : world_(world), permissions_(permissions) {}
  std::unique_ptr<AccessibilityWindow> find(std::int32_t pid, WindowID window) override;

 private:
  SimulatedWorld& world_;
  Permissions& permissions_;
};

}  // namespace tessaspaces
