#pragma once

#include <chrono>
#include <functional>

#include "bridges/Desktops.h"

/// Switches a display the way a user's swipe does, for systems that offer no operation for it: one swipe moves one
/// desktop to the left or right. The display is watched and corrected until it is there.
///
/// A swipe acts on the display under the pointer. Where that one does not have the target's desktop, the pointer is
/// put on the one that does for the time of the switch, unless the user holds a mouse button.
namespace tessaspaces::GestureSwitch {

inline constexpr auto burstGap = std::chrono::microseconds(10'000);
inline constexpr auto settleTime = std::chrono::milliseconds(500);
inline constexpr int maxCorrections = 2;

/// Asked now and then; once it says true the work ends without another event, correction, or line in the log. So it
/// does when the program is ending.
using Overtaken = std::function<bool()>;

/// Drives the target's display to the target; true when the display changed at least once, wherever it is by then.
/// False with a warning, and nothing done, when the target is not among the desktops of its display. Looks only at the
/// target's id and display. Blocks, up to about a second for each time that the display does not move or has to turn
/// round; meant to run off the main thread.
bool perform(const DesktopInfo& target, const Overtaken& overtaken = {});

/// Keeps the display on the target for half a second: where the system or another program drags it away it is driven
/// back, at most `maxCorrections` times. Any `perform` that begins meanwhile, for whichever display, ends this at once:
/// a newer switch owns the display. So does the display's or the target's being gone. Switches by other means are the
/// caller's to tell, through `overtaken`. Looks at the target's windows too. Blocks, for up to a few seconds; meant to
/// run off the main thread.
void settle(const DesktopInfo& target, const Overtaken& overtaken = {});

/// Brings the target's first window forward and gives it the focus: later, on the main thread, and only if the display
/// shows the target then. Does nothing for a desktop without windows. Returns at once; `overtaken` is asked later. Any
/// thread.
void focusTarget(const DesktopInfo& target, Overtaken overtaken = {});

}  // namespace tessaspaces::GestureSwitch
