#include "model/WindowMoves.h"

#include <array>
#include <chrono>
#include <functional>

#include "bridges/SkyLightBridge.h"
#include "bridges/YabaiBridge.h"
#include "model/Snapshot.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::Spaces {
namespace {

using namespace std::chrono_literals;

/// How long a window may take to arrive before the next method is tried.
constexpr Duration settleTime = 180ms;
/// The marker that the window server's older move call finds the target space by; the value is fixed.
constexpr std::int32_t temporaryCompatID = 0x79616265;

struct Attempt {
  const char* method;
  std::function<void()> action;
};

}  // namespace

bool move(WindowID window, SpaceID toSpace) {
  const std::array<WindowID, 1> windows{window};
  const std::array<SpaceID, 1> target{toSpace};
  const std::array<Attempt, 4> attempts{{
      {"SLSBridgedMoveWindowsToManagedSpaceOperation", [&] { SLS::bridgedMoveWindows(windows, toSpace); }},
      {"SLSMoveWindowsToManagedSpace", [&] { SLS::moveWindowsToManagedSpace(windows, toSpace); }},
      {"SLSSetWindowListWorkspace (compat ID)",
       [&] {
         SLS::spaceSetCompatID(toSpace, temporaryCompatID);
         SLS::setWindowListWorkspace(windows, temporaryCompatID);
         SLS::spaceSetCompatID(toSpace, 0);
       }},
      {"SLSAddWindowsToSpaces+SLSRemoveWindowsFromSpaces",
       [&] {
         auto others = workspaces(window);
         others.erase(toSpace);
         SLS::addWindowsToSpaces(windows, target);
         SLS::removeWindowsFromSpaces(windows, std::vector<SpaceID>(others.begin(), others.end()));
       }},
  }};

  for (const auto& attempt : attempts) {
    attempt.action();
    platform().dispatch().sleep(settleTime);
    if (workspaces(window).contains(toSpace)) {
      Log::info("MOVE OK [{}] -> space {} VIA {}", window, toSpace, attempt.method);
      return true;
    }
  }
  Log::error("MOVE FAILED [{}] -> space {} (likely SIP / newer macOS)", window, toSpace);
  return false;
}

bool moveOtherAppWindow(WindowID window, SpaceID toSpace) {
  return movesWindowsNatively() ? move(window, toSpace) : YabaiBridge::moveWindow(window, toSpace);
}

}  // namespace tessaspaces::Spaces
