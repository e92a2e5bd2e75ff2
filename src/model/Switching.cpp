#include "model/Switching.h"

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "bridges/SkyLightBridge.h"
#include "model/Snapshot.h"
#include "model/SwitchRequests.h"
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

bool verifySwitch(const DesktopInfo& target, const std::string& method, const SwitchRequest& request) {
  SpaceID active = 0;
  bool arrived = false;
  for (int attempt = 0; attempt < verifyPolls && !arrived && !request.overtakenBy(); ++attempt) {
    platform().dispatch().sleep(verifyInterval);
    active = currentSpaceID(target.displayUUID);
    arrived = active == target.spaceID;
  }
  Log::debug("SWITCH: method '{}' -> active={} target={} {}", method, active, target.spaceID,
             arrived ? "OK" : "FAILED");
  setLastSwitchMethod(method);
  return arrived;
}

std::vector<SpaceID> allSpacesBut(SpaceID shown, const std::string& displayUUID) {
  auto hiding = allSpaceIDs(displayUUID);
  std::erase(hiding, shown);
  return hiding;
}

bool switchBridged(const DesktopInfo& target, std::unique_ptr<ReadScope> reading, const SwitchRequest& request) {
  const auto hiding = allSpacesBut(target.spaceID, target.displayUUID);
  reading.reset();  // from here on the answers must be new ones
  if (!SLS::bridgedSwitchSpace(target.displayUUID, target.spaceID, hiding)) {
    Log::warning("SWITCH: bridged operation unavailable, falling back to gesture");
    return false;
  }
  if (const auto later = request.overtakenBy()) {
    // This thread may have come to it behind the later switch's: the latest wish has the last word.
    SLS::bridgedSwitchSpace(later->display, later->target, allSpacesBut(later->target, later->display));
    return false;
  }
  for (int attempt = 0; attempt < bridgedPolls; ++attempt) {
    if (currentSpaceID(target.displayUUID) == target.spaceID) return true;
    if (request.overtakenBy()) return false;
    platform().dispatch().sleep(bridgedPollInterval);
  }
  Log::warning("SWITCH: bridged switch to {} did not arrive, falling back to gesture", target.spaceID);
  return false;
}

/// Activating an application makes the system show a desktop with a window of it.
bool switchByActivation(const DesktopInfo& target, const SwitchRequest& request) {
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

bool performSwitchTo(const DesktopInfo& target, const SwitchRequest& request) {
  if (request.overtakenBy()) return giveWay(target);
  // What is asked before the first method answers from one batch of requests.
  auto reading = platform().windowServer().beginRead();
  const SpaceID active = currentSpaceID(target.displayUUID);
  Log::debug("SWITCH: start active={} target={} windowsOnTarget={}", active, target.spaceID, target.windows.size());
  if (active == target.spaceID && !request.followsUnfinished()) {
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
  if (request.overtakenBy()) return giveWay(target);
  if (switchByActivation(target, request)) return true;
  return request.overtakenBy() ? giveWay(target) : switchDegraded(target);
}

bool switchTo(const DesktopRef& desktop, const SwitchRequest& request) {
  if (!performSwitchTo(*desktop, request)) return false;
  rememberActiveSpace(desktop->spaceID, desktop->displayUUID);
  return true;
}

void switchToOffMainThread(const DesktopRef& desktop, SwitchCompletion completion) {
  // The order in which switches are asked for counts, not the one in which threads come to them.
  platform().dispatch().background(
      [desktop, request = std::make_shared<const SwitchRequest>(desktop->displayUUID, desktop->spaceID),
       completion = std::move(completion)] {
        const bool arrived = switchTo(desktop, *request);
        if (completion) platform().dispatch().async([completion, arrived] { completion(arrived); });
      });
}

}  // namespace

bool switchTo(const DesktopRef& desktop) {
  return switchTo(desktop, SwitchRequest(desktop->displayUUID, desktop->spaceID));
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
