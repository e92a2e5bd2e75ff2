#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Screens.h"

/// Which screens count. Screens that mirror one another show one picture and stand for one display.
namespace tessaspaces::Spaces {

/// Identifier text of the screen's display; absent for no screen or one without an identity.
std::optional<std::string> displayUUID(const ScreenRef& screen);
std::optional<DisplayID> directDisplayID(const ScreenRef& screen);
/// The screen with exactly this identifier, else the first screen; null only when there are no screens.
ScreenRef screenForDisplayUUID(const std::string& uuid);

/// The screen that stands for the mirror set of `screen`: the built-in panel where the set has one, else
/// the given screen itself. Null for no screen.
ScreenRef canonicalScreen(const ScreenRef& screen);
/// One screen for each display, in the system's order; screens without a display number are left out.
std::vector<ScreenRef> distinctScreens();
/// The canonical screen under the pointer, else the main screen's; null when there are no screens.
ScreenRef screenWithCursor();

}  // namespace tessaspaces::Spaces
