#pragma once

#include "bridges/Desktops.h"

namespace tessaspaces::Spaces {

/// The last resort for a window that ignores every request to move: takes it by its title bar as a hand would, goes to
/// the other desktop with it, lets it go there, and comes back. The user sees that happen. Works only from the desktop
/// that is shown, and only where the system moves dragged windows along. True when the window ended up on the target.
/// Blocks for up to some seconds; off the main thread.
bool dragAlong(const SpaceWindow& window, const DesktopRef& from, const DesktopRef& to);

}  // namespace tessaspaces::Spaces
