#include "platform/Platform.h"

#include <atomic>

#include "base/Fatal.h"

namespace tessaspaces {
namespace {
std::atomic<Platform*> current = nullptr;
}

Platform& platform() {
  Platform* set = current.load(std::memory_order_acquire);
  if (set == nullptr) fatal("no platform has been set");
  return *set;
}

void setPlatform(Platform* platform) {
  current.store(platform, std::memory_order_release);
}

bool hasPlatform() {
  return current.load(std::memory_order_acquire) != nullptr;
}

}  // namespace tessaspaces
