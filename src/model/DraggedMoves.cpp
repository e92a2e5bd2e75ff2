#include "model/DraggedMoves.h"

#include <optional>

#include "bridges/TitleBarDrag.h"
#include "model/Snapshot.h"
#include "model/Switching.h"
#include "settings/Log.h"

namespace tessaspaces::Spaces {

bool dragAlong(const SpaceWindow& window, const DesktopRef& from, const DesktopRef& to) {
  const auto& display = from->displayUUID;
  const auto isHere = [&] { return currentSpaceID(display) == from->spaceID; };
  // A window that has gone, or a user who has gone elsewhere, leaves nothing to take hold of.
  if (!isHere() || !workspaces(window.id).contains(from->spaceID)) return false;
  Log::info("DRAGSIM: window {} ignores requests, carrying it to space {} by its title bar", window.id, to->spaceID);

  const auto overtaken = SwitchRequest::overtakingFromNow(display, from->spaceID);
  std::optional<SwitchRequest> going;
  const auto go = [&] {
    going.emplace(display, to->spaceID);
    return switchTo(to, *going);
  };
  TitleBarDrag::carry(window, go, [&] { return !overtaken() && isHere(); });

  const bool carried = workspaces(window.id).contains(to->spaceID);
  // Not if the user wished to be somewhere else meanwhile.
  if (going && !going->overtakenBy() && currentSpaceID(display) == to->spaceID) {
    going.reset();
    switchTo(from);
  }
  if (carried) {
    Log::info("DRAGSIM: window {} arrived on space {}", window.id, to->spaceID);
  } else {
    Log::warning("DRAGSIM: window {} was not carried along to space {}", window.id, to->spaceID);
  }
  return carried;
}

}  // namespace tessaspaces::Spaces
