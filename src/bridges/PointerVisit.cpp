#include "bridges/PointerVisit.h"

#include <algorithm>
#include <cmath>

#include "bridges/DisplaySpaces.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::GestureSwitch {
namespace {

using ScreenList = std::vector<ScreenRef>;

ScreenRef screenUnder(const ScreenList& screens, Point pointer) {
  const auto found = std::find_if(screens.begin(), screens.end(),
                                  [&](const ScreenRef& screen) { return screen->frame.contains(pointer); });
  if (found == screens.end()) return nullptr;
  const auto master = std::find_if(screens.begin(), screens.end(), [&](const ScreenRef& screen) {
    return (*found)->mirrors != 0 && screen->displayID == (*found)->mirrors;
  });
  return master == screens.end() ? *found : *master;
}

bool shows(const ScreenRef& screen, const DesktopInfo& target) {
  if (!screen || !screen->uuid) return false;
  if (*screen->uuid == target.displayUUID) return true;
  // Displays may share their desktops.
  const auto spaces = Spaces::allSpaceIDs(*screen->uuid);
  return std::find(spaces.begin(), spaces.end(), target.spaceID) != spaces.end();
}

bool isAt(Point place) {
  const auto pointer = platform().inputEvents().mouseLocation();
  return pointer && std::abs(pointer->x - place.x) <= 1 && std::abs(pointer->y - place.y) <= 1;
}

}  // namespace

bool PointerVisit::goTo(const DesktopInfo& target) {
  const auto screens = platform().screens().screens();
  if (shows(screenUnder(screens, platform().screens().pointer()), target)) return true;
  auto& input = platform().inputEvents();
  const auto screen = std::find_if(screens.begin(), screens.end(),
                                   [&](const ScreenRef& each) { return each->uuid == target.displayUUID; });
  const auto home = input.mouseLocation();
  const auto held = input.held();
  if (screen != screens.end() && home && !(held && held->button) && hand_.take()) {
    const auto center = (*screen)->frame.center();
    // Seen from the top of the first screen, as the mouse is.
    const Point place{center.x, screens.front()->frame.height - center.y};
    if (input.moveMouse(place)) {
      if (!home_) home_ = home;
      away_ = place;
      return true;
    }
  }
  Log::debug("SWITCH: GESTURE the pointer is not on the display of target {}", target.spaceID);
  return false;
}

PointerVisit::~PointerVisit() {
  if (home_ && isAt(*away_)) platform().inputEvents().moveMouse(*home_);
}

}  // namespace tessaspaces::GestureSwitch
