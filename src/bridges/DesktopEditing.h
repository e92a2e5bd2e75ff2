#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/WindowServer.h"

/// Adding and removing desktops. No system promises that a request for it works, so the display is looked at
/// afterwards. Each operation blocks for up to a second, a little longer where the window manager has to be tried or an
/// external program asked: off the main thread, where there is a user interface. One at a time: while one is under way,
/// others are refused. Failures are logged under "MCSPACES: ".
namespace tessaspaces::Spaces {

enum class DesktopRemoval {
  removed,
  noSuchDesktop,      // the display has no such space, or there is no such display
  fullScreenSpace,    // it belongs to an application, not to the user
  lastDesktop,        // a display keeps one user desktop
  unsupported,        // nothing here removes desktops
  notRemoved,         // asked for, but the display does not have exactly that one less
  anotherIsUnderWay,  // desktops are being added or removed by this program
};
/// What went wrong, in a few words of English; absent for `removed`.
[[nodiscard]] std::optional<std::string_view> failureText(DesktopRemoval outcome);

/// One more user desktop for the display; its id. Absent when the display did not come to have exactly one more.
/// Whether it is shown is up to the window manager.
std::optional<SpaceID> addDesktop(const std::string& displayUUID);

/// Removes a user desktop of the display; its windows go to a neighbour. Where desktops are known by their numbers
/// alone, those behind it have other ids afterwards: their nicknames and the applications assigned to them move along,
/// and those of the removed one are dropped.
DesktopRemoval removeDesktop(const std::string& displayUUID, SpaceID space);

}  // namespace tessaspaces::Spaces
