#pragma once

/// What the system's version decides: from 27.0 on the window server offers operations of its own.
namespace tessaspaces::Spaces {

/// True below system version 27.0, where the external window manager is asked before anything else.
bool askYabaiFirst();
/// True from system version 27.0 on, where windows of other applications can be moved directly.
bool movesWindowsNatively();

}  // namespace tessaspaces::Spaces
