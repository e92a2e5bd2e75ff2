#include "app/SessionBus.h"

#include <sys/stat.h>

#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "platform/Platform.h"

namespace tessaspaces::SessionBus {
namespace {

struct Waiting {
  std::mutex mutex;  // guards everything below and the answers under way
  std::condition_variable changed;
  int asked = 0;
  bool over = false;
};

/// Never destroyed: a thread whose bus does not answer may outlive everything.
Waiting& waiting() {
  static Waiting& shared = *std::make_unique<Waiting>().release();
  return shared;
}

}  // namespace

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

namespace {

void connectTo(QDBusConnection (*open)(), std::function<void(QDBusConnection)> connected,
               std::function<void()> absent) {
  // Connecting waits for the bus to answer, which a hung one never does: a thread that nobody joins asks, and
  // the job that the dispatch joins gives up when the program ends.
  platform().dispatch().background([open, connected = std::move(connected), absent = std::move(absent)] {
    const auto answer = std::make_shared<std::optional<QDBusConnection>>();
    {
      const std::lock_guard lock(waiting().mutex);
      ++waiting().asked;
    }
    std::thread([open, answer] {
      const QDBusConnection bus = open();
      const std::lock_guard lock(waiting().mutex);
      *answer = bus;
      --waiting().asked;
      waiting().changed.notify_all();
    }).detach();
    std::unique_lock lock(waiting().mutex);
    waiting().changed.wait(lock, [&] { return waiting().over || answer->has_value(); });
    if (waiting().over) return;
    platform().dispatch().async([connected, absent, bus = **answer] {
      if (bus.isConnected()) {
        connected(bus);
      } else if (absent) {
        absent();
      }
    });
  });
}

}  // namespace

void connect(std::function<void(QDBusConnection)> connected, std::function<void()> absent) {
  connectTo(&QDBusConnection::sessionBus, std::move(connected), std::move(absent));
}

void connectSystem(std::function<void(QDBusConnection)> connected, std::function<void()> absent) {
  connectTo(&QDBusConnection::systemBus, std::move(connected), std::move(absent));
}

bool abandon() {
  const std::lock_guard lock(waiting().mutex);
  waiting().over = true;
  waiting().changed.notify_all();
  return waiting().asked > 0;
}

}  // namespace tessaspaces::SessionBus
