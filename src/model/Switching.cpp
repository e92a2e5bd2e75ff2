#include "model/Switching.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "bridges/SkyLightBridge.h"
#include "model/Snapshot.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::Spaces {
namespace {

using namespace std::chrono_literals;

// A bridged switch usually lands within a few milliseconds; half a second is past all hope.
constexpr int bridgedPolls = 50;
constexpr Duration bridgedPollInterval = 10ms;
// The other methods take effect through another program, which needs a moment before the first look.
constexpr int verifyPolls = 12;
constexpr Duration verifyInterval = 40ms;

struct LastMethod {
  /// Guards `name`.
  std::mutex lastSwitchMethodLock;
  std::string name;
};

LastMethod& lastMethod() {
  static LastMethod instance;
  return instance;
}

void setLastSwitchMethod(std::string method) {
  const std::scoped_lock held(lastMethod().lastSwitchMethodLock);
  lastMethod().name = std::move(method);
}

struct LatestRequests {
  /// Guards both.
  std::mutex lock;
  std::uint64_t last = 0;
  std::unordered_map<std::string, std::uint64_t> ofDisplay;
};

LatestRequests& latestRequests() {
  static LatestRequests instance;
  return instance;
}

/// One wish to switch a display. The next wish for the same display overtakes it: from then on it must not touch the
/// display any more, or a quick second key press would be undone by the fall-backs of the first.
class Request {
 public:
  explicit Request(std::string display) : display_(std::move(display)) {
    LatestRequests& latest = latestRequests();
    const std::scoped_lock held(latest.lock);
    number_ = ++latest.last;
    latest.ofDisplay[display_] = number_;
  }
  [[nodiscard]] bool overtaken() const {
    LatestRequests& latest = latestRequests();
    const std::scoped_lock held(latest.lock);
    return latest.ofDisplay[display_] != number_;
  }

 private:
  std::string display_;
  std::uint64_t number_ = 0;
};

bool verifySwitch(const DesktopInfo& target, const std::string& method, const Request& request) {
  SpaceID active = 0;
  bool arrived = false;
  for (int attempt = 0; attempt < verifyPolls && !arrived && !request.overtaken(); ++attempt) {
    platform().dispatch().sleep(verifyInterval);
    active = currentSpaceID(target.displayUUID);
    arrived = active == target.spaceID;
  }
  Log::debug("SWITCH: method '{}' -> active={} target={} {}", method, active, target.spaceID,
             arrived ? "OK" : "FAILED");
  setLastSwitchMethod(method);
  return arrived;
}

bool switchBridged(const DesktopInfo& target, std::unique_ptr<ReadScope> reading, const Request& request) {
  auto hiding = allSpaceIDs(target.displayUUID);
  std::erase(hiding, target.spaceID);
  reading.reset();  // from here on the answers must be new ones
  if (!SLS::bridgedSwitchSpace(target.displayUUID, target.spaceID, hiding)) {
    Log::warning("SWITCH: bridged operation unavailable, falling back to gesture");
    return false;
  }
  for (int attempt = 0; attempt < bridgedPolls; ++attempt) {
    if (currentSpaceID(target.displayUUID) == target.spaceID) return true;
    if (request.overtaken()) return false;
    platform().dispatch().sleep(bridgedPollInterval);
  }
  Log::warning("SWITCH: bridged switch to {} did not arrive, falling back to gesture", target.spaceID);
  return false;
}

/// Activating an application makes the system show a desktop with a window of it.
bool switchByActivation(const DesktopInfo& target, const Request& request) {
  if (target.windows.empty()) return false;
  const auto application = platform().applications().running(target.windows.front().pid);
  if (!application) return false;
  Log::debug("SWITCH: trying to activate app '{}' (pid {}) which has a window on target", application->localizedName,
             application->pid);
  platform().dispatch().sync([pid = application->pid] { platform().applications().activate(pid); });
  return verifySwitch(target, "aktivace aplikace", request);
}

bool switchDegraded(const DesktopInfo& target) {
  SLS::managedDisplaySetCurrentSpace(target.displayUUID, target.spaceID);
  const SpaceID active = currentSpaceID(target.displayUUID);
  Log::warning(
      "SWITCH: DEGRADED via raw SLS (active={}) — windows from the previous desktop may remain visible; yabai is "
      "needed for a clean switch",
      active);
  setLastSwitchMethod("SLS (degraded)");
  return active == target.spaceID;
}

bool giveWay(const DesktopInfo& target) {
  Log::debug("SWITCH: overtaken by a later switch (target={})", target.spaceID);
  return false;
}

bool performSwitchTo(const DesktopInfo& target, const Request& request) {
  if (request.overtaken()) return giveWay(target);
  // What is asked before the first method answers from one batch of requests.
  auto reading = platform().windowServer().beginRead();
  const SpaceID active = currentSpaceID(target.displayUUID);
  Log::debug("SWITCH: start active={} target={} windowsOnTarget={}", active, target.spaceID, target.windows.size());
  if (active == target.spaceID) {
    Log::debug("SWITCH: target already active, doing nothing");
    setLastSwitchMethod("no-op (already active)");
    return true;
  }
  if (movesWindowsNatively() && switchBridged(target, std::exchange(reading, nullptr), request)) {
    Log::debug("SWITCH: method 'bridged' -> active={} target={} OK", active, target.spaceID);
    setLastSwitchMethod("bridged");
    return true;
  }
  reading.reset();
  if (request.overtaken()) return giveWay(target);
  if (switchByActivation(target, request)) return true;
  return request.overtaken() ? giveWay(target) : switchDegraded(target);
}

bool switchTo(const DesktopRef& desktop, const Request& request) {
  if (!performSwitchTo(*desktop, request)) return false;
  rememberActiveSpace(desktop->spaceID, desktop->displayUUID);
  return true;
}

void switchToOffMainThread(const DesktopRef& desktop, SwitchCompletion completion) {
  // The order in which switches are asked for counts, not the one in which threads come to them.
  platform().dispatch().background(
      [desktop, request = Request(desktop->displayUUID), completion = std::move(completion)] {
        const bool arrived = switchTo(desktop, request);
        if (completion) platform().dispatch().async([completion, arrived] { completion(arrived); });
      });
}

}  // namespace

bool switchTo(const DesktopRef& desktop) {
  return switchTo(desktop, Request(desktop->displayUUID));
}

void switchAnimated(const DesktopRef& desktop, std::optional<GridDirection> /*direction*/,
                    SwitchCompletion completion) {
  switchToOffMainThread(desktop, std::move(completion));
}

void switchWithoutOverlay(const DesktopRef& desktop, SwitchCompletion completion) {
  switchToOffMainThread(desktop, std::move(completion));
}

std::string lastSwitchMethod() {
  const std::scoped_lock held(lastMethod().lastSwitchMethodLock);
  return lastMethod().name;
}

}  // namespace tessaspaces::Spaces
