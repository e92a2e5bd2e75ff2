#pragma once

#include <functional>

#include "bridges/Desktops.h"

/// Carries a window to another desktop as a user's hand does: by holding its title bar while the desktop is switched.
/// The last resort, for a window that no request moves. It works where the window manager takes the window that is
/// being dragged along to the desktop that it shows next.
namespace tessaspaces::TitleBarDrag {

/// Takes the window by its title bar, runs `switchDesktop`, and lets go on the desktop that is shown then. The window's
/// desktop must be shown. True when the window was held while `switchDesktop` returned true; which desktop the window
/// is on by then is for the caller to see. Whatever happens, the button is up and the pointer and the window are back
/// at their places when this returns.
///
/// Does not start, and returns false, where the window manager is known to leave such windows behind; when the window
/// is gone, has no title bar, is covered even after it was raised, or does not follow the pointer; while the user holds
/// a mouse button or goes on holding a modifier; or while the pointer is under way for another window or another
/// display's switch.
///
/// All of that takes time, in which the user may go elsewhere. `stillWanted` is asked, on this thread, once the user's
/// hands are off, and again before the window is raised and before the button is pressed; when it says no, or the
/// program is ending, this ends without a warning and returns false. By default the drag is always wanted.
///
/// Blocks for some hundred milliseconds, up to about three seconds and the time that `switchDesktop` takes; not on the
/// main thread.
bool carry(const SpaceWindow& window, const std::function<bool()>& switchDesktop,
           const std::function<bool()>& stillWanted = {});

}  // namespace tessaspaces::TitleBarDrag
