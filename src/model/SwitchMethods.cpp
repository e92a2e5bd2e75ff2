#include "model/SwitchMethods.h"

#include <string>
#include <utility>
#include <vector>

#include "bridges/DisplaySpaces.h"
#include "bridges/GestureSwitch.h"
#include "bridges/SkyLightBridge.h"
#include "bridges/YabaiBridge.h"
#include "model/LastSwitchMethod.h"
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

SwitchResult verifySwitch(const SwitchAttempt& attempt, const std::string& method) {
  const auto& target = *attempt.target;
  SpaceID active = 0;
  bool arrived = false;
  for (int look = 0; look < verifyPolls && !arrived; ++look) {
    platform().dispatch().sleep(verifyInterval);
    if (attempt.isOver()) return SwitchResult::failed;
    active = currentSpaceID(target.displayUUID);
    arrived = active == target.spaceID;
  }
  Log::debug("SWITCH: method '{}' -> active={} target={} {}", method, active, target.spaceID,
             arrived ? "OK" : "FAILED");
  setLastSwitchMethod(method);
  return arrived ? SwitchResult::arrived : SwitchResult::failed;
}

std::vector<SpaceID> allSpacesBut(SpaceID shown, const std::string& displayUUID) {
  auto hiding = allSpaceIDs(displayUUID);
  std::erase(hiding, shown);
  return hiding;
}

/// Hands the operation over and waits for the display.
bool arrivesBridged(SwitchAttempt& attempt) {
  const auto& target = *attempt.target;
  const auto hiding = allSpacesBut(target.spaceID, target.displayUUID);
  attempt.reading.reset();  // from here on the answers must be new ones
  bool handedOver = false;
  {
    const auto turn = attempt.request.takeTurn();
    if (!turn) return false;
    handedOver = SLS::bridgedSwitchSpace(target.displayUUID, target.spaceID, hiding);
  }
  if (!handedOver) {
    Log::warning("SWITCH: bridged operation unavailable, falling back to gesture");
    return false;
  }
  for (int look = 0; look < bridgedPolls; ++look) {
    if (currentSpaceID(target.displayUUID) == target.spaceID) return true;
    if (attempt.isOver()) return false;
    platform().dispatch().sleep(bridgedPollInterval);
  }
  Log::warning("SWITCH: bridged switch to {} did not arrive, falling back to gesture", target.spaceID);
  return false;
}

}  // namespace

bool SwitchAttempt::isOver() const {
  return request.overtakenBy().has_value() || platform().dispatch().isEnding();
}

SwitchResult switchBridged(SwitchAttempt& attempt) {
  if (!arrivesBridged(attempt)) return SwitchResult::failed;
  const auto& target = *attempt.target;
  Log::debug("SWITCH: method 'bridged' -> active={} target={} OK", attempt.active, target.spaceID);
  setLastSwitchMethod("bridged");
  GestureSwitch::focusTarget(target, attempt.request.overtaking());
  return SwitchResult::arrived;
}

SwitchResult switchByGesture(SwitchAttempt& attempt) {
  const auto& target = *attempt.target;
  const auto overtaken = attempt.request.overtaking();
  if (!GestureSwitch::perform(target, overtaken)) return SwitchResult::failed;
  const SpaceID active = currentSpaceID(target.displayUUID);
  if (active != target.spaceID || overtaken()) return SwitchResult::failed;
  Log::debug("SWITCH: method 'gesture' -> active={} target={} OK", active, target.spaceID);
  setLastSwitchMethod("gesture");
  GestureSwitch::focusTarget(target, overtaken);
  platform().dispatch().background(
      [desktop = attempt.target, overtaken] { GestureSwitch::settle(*desktop, overtaken); });
  return SwitchResult::arrived;
}

SwitchResult switchByYabai(SwitchAttempt& attempt) {
  auto result = YabaiBridge::FocusResult::failed;
  {
    const auto turn = attempt.request.takeTurn();
    if (!turn) return SwitchResult::failed;
    result = YabaiBridge::focusSpace(attempt.target->spaceID);
  }
  switch (result) {
    case YabaiBridge::FocusResult::switched: return verifySwitch(attempt, "yabai");
    case YabaiBridge::FocusResult::alreadyThere:
      Log::debug("SWITCH: yabai reports we are already on the target, nothing to do");
      setLastSwitchMethod("yabai (already there)");
      return SwitchResult::arrived;
    case YabaiBridge::FocusResult::missionControlActive:
      Log::info("SWITCH: skipped — Mission Control is active (target={})", attempt.target->spaceID);
      setLastSwitchMethod("skipped (Mission Control)");
      return SwitchResult::refused;
    case YabaiBridge::FocusResult::failed: break;
  }
  return SwitchResult::failed;
}

SwitchResult switchByActivation(SwitchAttempt& attempt) {
  const auto& target = *attempt.target;
  if (target.windows.empty()) return SwitchResult::failed;
  const auto application = platform().applications().running(target.windows.front().pid);
  if (!application) return SwitchResult::failed;
  auto turn = attempt.request.takeTurn();
  if (!turn) return SwitchResult::failed;
  Log::debug("SWITCH: trying to activate app '{}' (pid {}) which has a window on target", application->localizedName,
             application->pid);
  platform().dispatch().sync([pid = application->pid] { platform().applications().activate(pid); });
  turn.reset();
  return verifySwitch(attempt, "aktivace aplikace");
}

SwitchResult switchDegraded(SwitchAttempt& attempt) {
  const auto& target = *attempt.target;
  auto turn = attempt.request.takeTurn();
  if (!turn) return SwitchResult::failed;
  SLS::managedDisplaySetCurrentSpace(target.displayUUID, target.spaceID);
  turn.reset();
  const SpaceID active = currentSpaceID(target.displayUUID);
  Log::warning(
      "SWITCH: DEGRADED via raw SLS (active={}) — windows from the previous desktop may remain visible; yabai is "
      "needed for a clean switch",
      active);
  setLastSwitchMethod("SLS (degraded)");
  return active == target.spaceID ? SwitchResult::arrived : SwitchResult::failed;
}

}  // namespace tessaspaces::Spaces
