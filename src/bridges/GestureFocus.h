#pragma once

#include <functional>

#include "bridges/Desktops.h"

/// Making an application with a window on the target the frontmost one. The system keeps a display where the active
/// application has its windows, and drags it back there when it has been moved elsewhere. All of it looks at the
/// target's first window alone and does nothing for a desktop without windows. Any thread.
namespace tessaspaces::GestureSwitch {

/// After the display has arrived: later, on the main thread, if it is still there and `stillWanted`.
void claimActivation(const DesktopInfo& target, std::function<bool()> stillWanted);

/// Before the display is driven back: on the main thread, returning once the application is frontmost, or when it has
/// not become so in 200 ms. The main thread waits along, since until then any other activation that it might do would
/// send the display elsewhere again; that is why the wait is that short.
void claimActivationBeforeCorrection(const DesktopInfo& target, const std::function<bool()>& stillWanted);

}  // namespace tessaspaces::GestureSwitch
