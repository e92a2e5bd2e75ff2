#pragma once

#include <functional>
#include <optional>
#include <string>

#include "bridges/Desktops.h"
#include "model/Navigation.h"
#include "model/SwitchRequests.h"

/// Making a desktop the current one of its display. No system promises that this works, so the methods
/// are tried in an order that depends on the system version, from the cleanest to the crudest, and after
/// each one the display is looked at.
namespace tessaspaces::Spaces {

/// Told on the main thread whether the display arrived on the target.
using SwitchCompletion = std::function<void(bool arrived)>;

/// Switches and waits for the display to arrive; true when it did. A later switch of the same display overtakes an
/// earlier one that has not arrived, which then gives up without another try. Blocks for up to about a second, so it
/// belongs off the main thread. After a success the target is remembered as the display's active space.
bool switchTo(const DesktopRef& desktop);

/// The same for a wish that the caller has made, and keeps for as long as it wants to know what overtook it.
bool switchTo(const DesktopRef& desktop, const SwitchRequest& request);

/// Switches off the main thread, with the user's transition where there is one, then runs the completion.
void switchAnimated(const DesktopRef& desktop, std::optional<GridDirection> direction,
                    SwitchCompletion completion = {});
/// The same without a transition.
void switchWithoutOverlay(const DesktopRef& desktop, SwitchCompletion completion = {});

/// The method of the last attempt that recorded one; empty before the first. Any thread.
std::string lastSwitchMethod();

}  // namespace tessaspaces::Spaces
