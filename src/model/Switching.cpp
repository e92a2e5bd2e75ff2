#include "model/Switching.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "bridges/DisplaySpaces.h"
#include "bridges/SkyLightBridge.h"
#include "bridges/YabaiBridge.h"
#include "model/LastSwitchMethod.h"
#include "model/Snapshot.h"
#include "model/SwitchMethods.h"
#include "model/SwitchRequests.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::Spaces {
namespace {

using Rung = SwitchResult (*)(SwitchAttempt&);
/// From the cleanest way to the crudest: on systems that offer their own operations, and on older ones.
constexpr Rung nativeLadder[] = {switchBridged, switchByGesture, switchByActivation, switchDegraded};
constexpr Rung ladder[] = {switchByYabai, switchByActivation, switchDegraded};

/// What the display shows, by the program that is asked first on this system.
SpaceID activeSpace(const DesktopInfo& target) {
  if (askYabaiFirst()) {
    if (const auto focused = YabaiBridge::focusedSpaceID()) return *focused;
  }
  return currentSpaceID(target.displayUUID);
}

bool giveWay(const DesktopInfo& target) {
  Log::debug("SWITCH: overtaken by a later switch (target={})", target.spaceID);
  return false;
}

bool performSwitchTo(const DesktopRef& desktop, const SwitchRequest& request) {
  const auto& target = *desktop;
  if (request.overtakenBy()) return giveWay(target);
  // What is asked before the first method answers from one batch of requests; another program's answer is no such.
  auto reading = askYabaiFirst() ? nullptr : platform().windowServer().beginRead();
  const SpaceID active = activeSpace(target);
  Log::debug("SWITCH: start active={} target={} windowsOnTarget={}", active, target.spaceID, target.windows.size());
  if (active == target.spaceID && !request.followsUnfinished()) {
    Log::debug("SWITCH: target already active, doing nothing");
    setLastSwitchMethod("no-op (already active)");
    return true;
  }
  SwitchAttempt attempt{desktop, request, active, std::move(reading)};
  for (const auto rung : movesWindowsNatively() ? std::span<const Rung>(nativeLadder) : std::span<const Rung>(ladder)) {
    const auto result = rung(attempt);
    if (result == SwitchResult::arrived) return true;
    if (request.overtakenBy()) return giveWay(target);
    if (result == SwitchResult::refused || attempt.isOver()) return false;
  }
  return false;
}

/// The other displays that list the same desktop: they have gone there with it.
std::vector<std::string> sharing(const DesktopInfo& desktop) {
  std::vector<std::string> others;
  for (const auto& display : SLS::copyManagedDisplaySpaces().value_or(std::vector<ManagedDisplay>{})) {
    const auto& identifier = display.displayIdentifier;
    if (!identifier || *identifier == desktop.displayUUID || !display.spaces) continue;
    const bool lists = std::any_of(display.spaces->begin(), display.spaces->end(),
                                   [&](const ManagedSpace& space) { return idOf(space) == desktop.spaceID; });
    if (lists) others.push_back(*identifier);
  }
  return others;
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

bool switchTo(const DesktopRef& desktop, const SwitchRequest& request) {
  if (!performSwitchTo(desktop, request)) return false;
  // A later switch may have arrived, and been noted, meanwhile.
  if (request.overtakenBy()) return true;
  rememberActiveSpace(desktop->spaceID, desktop->displayUUID);
  for (const auto& display : sharing(*desktop)) rememberActiveSpace(desktop->spaceID, display);
  return true;
}

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

}  // namespace tessaspaces::Spaces
