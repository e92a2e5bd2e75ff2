#include "model/DraggedMoves.h"

#include "bridges/TitleBarDrag.h"
#include "model/Snapshot.h"
#include "model/Switching.h"
#include "settings/Log.h"

namespace tessaspaces::Spaces {

bool dragAlong(const SpaceWindow& window, const DesktopRef& from, const DesktopRef& to) {
  // A window that has gone, or a user who has gone elsewhere, leaves nothing to take hold of.
  if (currentSpaceID(from->displayUUID) != from->spaceID || !workspaces(window.id).contains(from->spaceID))
    return false;
  Log::info("DRAGSIM: window {} ignores requests, carrying it to space {} by its title bar", window.id, to->spaceID);
  TitleBarDrag::carry(window, [&] { return switchTo(to); });
  const bool carried = workspaces(window.id).contains(to->spaceID);
  if (currentSpaceID(from->displayUUID) == to->spaceID) switchTo(from);
  if (carried) {
    Log::info("DRAGSIM: window {} arrived on space {}", window.id, to->spaceID);
  } else {
    Log::warning("DRAGSIM: window {} was not carried along to space {}", window.id, to->spaceID);
  }
  return carried;
}

}  // namespace tessaspaces::Spaces
