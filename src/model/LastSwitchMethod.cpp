#include "model/LastSwitchMethod.h"

#include <mutex>
#include <utility>

#include "model/Switching.h"

namespace tessaspaces::Spaces {
namespace {

struct LastMethod {
  /// Guards `name`.
  std::mutex lastSwitchMethodLock;
  std::string name;
};

LastMethod& lastMethod() {
  static LastMethod instance;
  return instance;
}

}  // namespace

void setLastSwitchMethod(std::string method) {
  const std::scoped_lock held(lastMethod().lastSwitchMethodLock);
  lastMethod().name = std::move(method);
}

std::string lastSwitchMethod() {
  const std::scoped_lock held(lastMethod().lastSwitchMethodLock);
  return lastMethod().name;
}

}  // namespace tessaspaces::Spaces
