#include "settings/Notifications.h"

#include <map>
#include <string>

#include "platform/Platform.h"

namespace tessaspaces::Notifications {
namespace {

// Touched on the main thread only.
std::map<std::string, Signal<>, std::less<>>& signals() {
  static std::map<std::string, Signal<>, std::less<>> byName;
  return byName;
}

void emit(std::string_view name) {
  if (const auto found = signals().find(name); found != signals().end()) found->second.emit();
}

}  // namespace

void post(std::string_view name) {
  if (!hasPlatform() || platform().dispatch().isMainThread()) {
    emit(name);
  } else {
    platform().dispatch().async([name = std::string(name)] { emit(name); });
  }
}

ScopedConnection observe(std::string_view name, std::function<void()> observer) {
  return signals()[std::string(name)].connect(std::move(observer));
}

}  // namespace tessaspaces::Notifications
