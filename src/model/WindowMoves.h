#pragma once

#include "platform/WindowServer.h"

namespace tessaspaces::Spaces {

/// Carries a window to another desktop without switching to it: four methods in a fixed order, and after
/// each a look at where the window is. True when it ended up on the desktop. Blocks for up to 0.72 s, so it
/// belongs off the main thread.
bool move(WindowID window, SpaceID toSpace);

enum class MoveResult {
  moved,
  failed,
  overtaken,  // by a later move of the same window, or by the end of the program: no sign that it cannot be moved
};
/// `move`, with what else may become of it.
MoveResult tryMove(WindowID window, SpaceID toSpace);

/// The same for a window of another application by whatever way this system has: where windows cannot be moved
/// natively, through the external window manager.
bool moveOtherAppWindow(WindowID window, SpaceID toSpace);
/// `moveOtherAppWindow`, with what else may become of it.
MoveResult tryMoveOtherAppWindow(WindowID window, SpaceID toSpace);

}  // namespace tessaspaces::Spaces
