#include "grid/SwitchCheck.h"

#include <chrono>
#include <string>

#include "bridges/DisplaySpaces.h"
#include "bridges/SystemVersion.h"
#include "bridges/YabaiBridge.h"
#include "model/Snapshot.h"
#include "model/Switching.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

constexpr Duration firstLook = 1s;
constexpr Duration untilSecondLook = 1500ms;

bool isSuperseded(const DesktopInfo& target) {
  const auto cached = Spaces::cachedActiveSpaceID(target.displayUUID);
  if (!cached || *cached == target.spaceID) return false;
  Log::debug("SWITCH: check skipped — target={} superseded by a later switch to {}", target.spaceID, *cached);
  return true;
}

void lookAgain(const DesktopInfo& target) {
  if (isSuperseded(target)) return;
  const auto active = Spaces::currentSpaceID(target.displayUUID);
  const bool holding = active == target.spaceID;
  const auto level = holding ? LogLevel::debug : LogLevel::warning;
  // What is asked for the line alone is not asked for nothing: yabai's answer takes its time.
  if (!Log::isEnabled(level)) return;
  const auto focused = Spaces::askYabaiFirst() ? YabaiBridge::focusedSpaceID() : std::nullopt;
  const auto front = platform().applications().frontmost();
  Log::write(
      level,
      fmt::format("SWITCH: check after 2.5s — active={} target={} method={} yabaiFocused={} frontApp={} {}", active,
                  target.spaceID, Spaces::lastSwitchMethod(), focused ? std::to_string(*focused) : "-",
                  front && front->bundleIdentifier ? *front->bundleIdentifier : "?", holding ? "HOLDING" : "REVERTED"));
}

void look(const DesktopRef& target) {
  if (isSuperseded(*target)) return;
  const auto active = Spaces::currentSpaceID(target->displayUUID);
  if (active == target->spaceID) {
    Log::debug("SWITCH: check after 1s — active={} target={} HOLDING", active, target->spaceID);
    return;
  }
  Log::debug("SWITCH: check after 1s — active={} target={} not settled yet, checking again", active, target->spaceID);
  platform().dispatch().after(untilSecondLook, [target] { lookAgain(*target); });
}

}  // namespace

void scheduleSwitchCheck(const DesktopRef& target) {
  platform().dispatch().after(firstLook, [target] { look(target); });
}

}  // namespace tessaspaces
