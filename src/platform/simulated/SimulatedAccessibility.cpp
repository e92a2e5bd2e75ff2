#include "platform/simulated/SimulatedAccessibility.h"

namespace tessaspaces {

std::unique_ptr<AccessibilityWindow> SimulatedAccessibility::find(std::int32_t /*pid*/, WindowID /*window*/) {
  static_cast<void>(world_);
  return nullptr;
}

}  // namespace tessaspaces
