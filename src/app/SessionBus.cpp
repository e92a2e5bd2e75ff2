#include "app/SessionBus.h"

#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "platform/Platform.h"

namespace tessaspaces::SessionBus {

void prepareEnvironment() {
  if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr && *address != '\0') return;
  if (const char* folder = std::getenv("XDG_RUNTIME_DIR"); folder != nullptr && *folder != '\0') {
    struct stat status {};
    const std::string socket = std::string(folder) + "/bus";
    if (stat(socket.c_str(), &status) == 0 && S_ISSOCK(status.st_mode)) return;
  }
  // An address of a kind that does not exist: connecting fails at once.
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
}

void connect(std::function<void(QDBusConnection)> connected, std::function<void()> absent) {
  // Connecting waits for the bus to answer.
  platform().dispatch().background([connected = std::move(connected), absent = std::move(absent)] {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    platform().dispatch().async([connected, absent, bus] {
      if (bus.isConnected()) {
        connected(bus);
      } else if (absent) {
        absent();
      }
    });
  });
}

}  // namespace tessaspaces::SessionBus
