#pragma once

#include <optional>

#include "bridges/Desktops.h"
#include "model/Navigation.h"
#include "model/Switching.h"

namespace tessaspaces::Spaces {

/// What one command works on: the display under the pointer.
struct HotkeyDisplay {
  /// This display's desktops only, so that positions are grid positions.
  SpacesSnapshot snap;
  ScreenRef screen;
  int columns = 0;
  int rows = 0;
};

/// Why a command did or did not go ahead. Every refusal has also been logged.
enum class CommandOutcome {
  ready,
  noDisplay,         // there is no display under the pointer, or it has no identity
  noCurrentDesktop,  // the display shows none of its desktops
  atGridEdge,        // nothing lies in that direction
  noSuchDesktop,     // the number is not one of the display's desktops
  noFocusedWindow,
  unsupported,  // this system version needs the external window manager for it, which does not answer
};

/// A command worked out but not carried out. `target` is set exactly when the outcome is `ready`.
struct DesktopPlan {
  CommandOutcome outcome = CommandOutcome::noDisplay;
  HotkeyDisplay display;
  DesktopRef target;
  std::optional<int> fromIndex;
  int toIndex = 0;
};

DesktopPlan planSwitchToNeighbor(GridDirection direction);
/// `number` counts from 1.
DesktopPlan planSwitchToDesktop(int number);

struct WindowMovePlan {
  DesktopPlan desktop;
  /// Absent in a plan that is ready where the external window manager moves whichever window has the focus.
  std::optional<SpaceWindow> window;
};

WindowMovePlan planMoveFocusedWindow(GridDirection direction);
/// Moves the window of a plan that is ready and waits for it to arrive. Blocks: off the main thread.
bool carryOut(const WindowMovePlan& plan);

// The commands behind the hot keys, for the main thread. They act on the display under the pointer and
// return true once the work has been handed to a background thread; the completion, if any, then hears
// how it ended. On a refusal they return false and the completion is not called.

bool switchToNeighbor(GridDirection direction, SwitchCompletion completion = {});
/// `number` counts from 1.
bool switchToDesktop(int number, SwitchCompletion completion = {});
/// Carries the focused window to the neighbouring desktop and stays where it is. The first request has gone out when
/// this returns, where the system moves windows natively.
bool moveFocusedWindowToNeighbor(GridDirection direction, SwitchCompletion completion = {});

}  // namespace tessaspaces::Spaces
