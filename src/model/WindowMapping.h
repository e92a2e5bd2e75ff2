#pragma once

#include "bridges/Desktops.h"
#include "platform/WindowList.h"

/// Which windows of the system's list belong on which desktop. Internal to the model.
namespace tessaspaces::Spaces {

/// The entry as an ordinary window; what was not reported becomes 0 or empty.
SpaceWindow spaceWindow(const WindowInfo& entry);

/// Fills in the windows of every desktop of the snapshot with their cached previews, leaves their icons
/// empty, and prunes the caches. Windows of this program and of layers other than 0 are left out. Does
/// nothing when the system gives no window list.
void mapWindows(SpacesSnapshot& snapshot);

/// Fills in the icons of the windows that `mapWindows` found.
void assignIcons(SpacesSnapshot& snapshot);

}  // namespace tessaspaces::Spaces
