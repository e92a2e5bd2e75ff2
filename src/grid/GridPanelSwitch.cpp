// How a panel of the overview goes to another desktop.

#include <algorithm>
#include <utility>

#include "base/Overloaded.h"
#include "bridges/SystemVersion.h"
#include "grid/GridPanelController.h"
#include "grid/GridZoomWish.h"
#include "grid/SwitchCheck.h"
#include "model/SwitchRequests.h"
#include "model/Switching.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces {
namespace {

/// The part of the zoom after which the new desktop may be shown: the switch lands while it is still running.
constexpr double revealAt = 0.65;

/// Brings the window forward, unless the user has gone elsewhere meanwhile: raising it would take him back.
std::function<void()> raising(const SpaceWindow& window, const std::function<bool()>& overtaken) {
  return [window, overtaken] {
    platform().dispatch().background([window, overtaken] {
      if (overtaken()) return;
      const auto found = platform().accessibility().find(window.pid, window.id);
      if (!found || !found->raise()) Log::debug("SWITCH: window {} is not there to be raised", window.id);
    });
  };
}

}  // namespace

void GridPanelController::handle(const GridAction& action) {
  std::visit(
      Overloaded{
          [this](const GridActions::MoveWindow& move) {
            const auto to = move.to ? move.to->spaceID : 0;
            Log::debug("ACTION DIAG: moveWindow(window={}, fromSpace={}, toSpace={})", move.window, move.fromSpace, to);
            performMove(move.window, move.fromSpace, move.to, move.dropInRoot, move.imageRect, nullptr);
          },
          [this](const GridActions::SwitchSpace& target) { performSwitch(target.space, {}); },
          [this](const GridActions::SwitchSpaceAndActivate& target) {
            const auto desktop = desktopOf(target.space);
            performSwitch(target.space, raising(target.window, Spaces::SwitchRequest::overtakingFromNow(
                                                                   desktop ? desktop->displayUUID : "", target.space)));
          },
          [this](const GridActions::Close&) {
            if (onCloseAll) {
              onCloseAll();
            } else {
              closeAnimated();
            }
          },
      },
      action);
}

DesktopRef GridPanelController::desktopOf(SpaceID space) const {
  const auto found = std::find_if(snapshot_.desktops.begin(), snapshot_.desktops.end(),
                                  [&](const auto& desktop) { return desktop->spaceID == space; });
  return found == snapshot_.desktops.end() ? nullptr : *found;
}

void GridPanelController::performSwitch(SpaceID space, std::function<void()> after) {
  stopIdleWindowRefresh();
  if (onWillSwitch) onWillSwitch();
  Log::debug("ACTION DIAG: switchSpace({})", space);
  const auto target = desktopOf(space);
  if (!target) {
    Log::error("SWITCH: space {} not in snapshot", space);
    startIdleWindowRefresh();
    return;
  }
  restoreSystemChrome(false);
  if (!Spaces::askYabaiFirst()) {
    switchUnderZoom(target, std::move(after));
    return;
  }
  Spaces::switchAnimated(target, std::nullopt, [after](bool /*arrived*/) {
    if (after) after();
  });
  scheduleSwitchCheck(target);
  closeGrid(space);
}

void GridPanelController::closeGrid(SpaceID zoomingInto) {
  const auto duration = gridZoomWish();
  const auto rect = zoomRect(zoomingInto);
  closeGrid(duration && rect ? std::optional(GridPanelView::Zoom{GridPanelView::Zoom::Direction::in, *rect, *duration})
                             : std::nullopt);
}

/// The grid's own zoom stands in for the transition: the panel goes once the new desktop is there, and not before the
/// zoom has come most of its way.
void GridPanelController::switchUnderZoom(const DesktopRef& target, std::function<void()> after) {
  auto& dispatch = platform().dispatch();
  leave();
  const auto duration = gridZoomWish();
  const auto rect = zoomRect(target->spaceID);
  auto deadline = dispatch.now();
  if (duration && rect) {
    deadline += std::chrono::duration_cast<Duration>(*duration * revealAt);
    animateGridZoom({GridPanelView::Zoom::Direction::in, *rect, *duration});
  }
  Spaces::switchWithoutOverlay(target, [deadline, reveal = onThisJourney(&GridPanelController::revealAfterSwitch),
                                        after = std::move(after)](bool /*arrived*/) {
    const Duration wait = std::max(Duration{}, Duration(deadline - platform().dispatch().now()));
    platform().dispatch().after(wait, [reveal, after] {
      reveal();
      if (after) after();
    });
  });
  scheduleSwitchCheck(target);
}

void GridPanelController::animateGridZoom(const GridPanelView::Zoom& zoom) {
  zooming_ = true;
  view_->animate(zoom, onThisJourney(&GridPanelController::zoomEnded));
}

void GridPanelController::zoomEnded() {
  zooming_ = false;
  if (revealed_) hide();
}

void GridPanelController::revealAfterSwitch() {
  revealed_ = true;
  // The rest of the zoom leads to just what is behind it.
  if (!zooming_) hide();
}

void GridPanelController::scheduleSwitchCheck(const DesktopRef& target) {
  tessaspaces::scheduleSwitchCheck(target);
}

}  // namespace tessaspaces
