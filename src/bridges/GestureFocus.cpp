#include "bridges/GestureFocus.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "bridges/DisplaySpaces.h"
#include "bridges/GestureSwitch.h"
#include "bridges/SkyLightBridge.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::GestureSwitch {
namespace {

using namespace std::chrono_literals;

constexpr int activationPolls = 20;
constexpr Duration activationPollInterval = 10ms;

/// What of a desktop is needed after the caller has let it go.
struct Goal {
  SpaceID space = 0;
  std::string display;
  SpaceWindow window;
};

std::optional<Goal> goalOf(const DesktopInfo& target) {
  if (target.windows.empty()) return std::nullopt;
  return Goal{target.spaceID, target.displayUUID, target.windows.front()};
}

bool isShown(const Goal& goal) {
  return Spaces::currentSpaceID(goal.display) == goal.space;
}

bool isFrontmost(std::int32_t pid) {
  const auto application = platform().applications().frontmost();
  return application && application->pid == pid;
}

/// Activating an application takes the user to the desktop of its front window, which may be another than the target:
/// that would be the very thing that this is to prevent.
bool activationLeadsTo(const Goal& goal) {
  const auto reading = platform().windowServer().beginRead();
  const auto list = platform().windowList().copyWindowInfo(WindowListOption::all);
  const auto onTarget = SLS::copyWindowsOnSpace(goal.space);
  if (!list || !onTarget) return false;
  const auto front = std::find_if(list->begin(), list->end(), [&](const WindowInfo& window) {
    return window.ownerPid == goal.window.pid && window.layer == 0;
  });
  return front != list->end() && front->number &&
         std::find(onTarget->begin(), onTarget->end(), *front->number) != onTarget->end();
}

/// Whether the system was asked to make the application frontmost.
bool activate(const Goal& goal) {
  return !isFrontmost(goal.window.pid) && activationLeadsTo(goal) &&
         platform().applications().activate(goal.window.pid);
}

}  // namespace

void claimActivation(const DesktopInfo& target, std::function<bool()> stillWanted) {
  const auto goal = goalOf(target);
  if (!goal) return;
  platform().dispatch().async([goal = *goal, stillWanted = std::move(stillWanted)] {
    if (stillWanted() && isShown(goal)) activate(goal);
  });
}

void claimActivationBeforeCorrection(const DesktopInfo& target, const std::function<bool()>& stillWanted) {
  const auto goal = goalOf(target);
  if (!goal) return;
  platform().dispatch().sync([&] {
    if (!stillWanted() || !activate(*goal)) return;
    for (int poll = 0; poll < activationPolls; ++poll) {
      if (isFrontmost(goal->window.pid) || !stillWanted()) return;
      platform().dispatch().sleep(activationPollInterval);
    }
  });
}

void focusTarget(const DesktopInfo& target, Overtaken overtaken) {
  const auto goal = goalOf(target);
  if (!goal) return;
  platform().dispatch().async([goal = *goal, overtaken = std::move(overtaken)] {
    // A later switch that has not arrived yet would be taken back.
    if ((overtaken && overtaken()) || !isShown(goal)) return;
    activate(goal);
    const auto& [id, title, pid, bounds] = goal.window;
    if (const auto window = platform().accessibility().find(pid, id)) {
      window->raise();
    } else {
      Log::debug("SWITCH: window {} '{}' (pid {}) not found via AX", id, title, pid);
    }
  });
}

}  // namespace tessaspaces::GestureSwitch
