#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "bridges/Desktops.h"
#include "bridges/DisplaySpaces.h"
#include "bridges/SystemVersion.h"

/// The desktop model. Every query asks the window server when it is called; nothing is kept but what is
/// said here. Any thread. A window server that does not answer yields an empty or absent result.
namespace tessaspaces::Spaces {

enum class WithWindows { no, yes };

/// Builds a snapshot of all displays. With windows, also fills in each desktop's windows, their cached
/// previews and their icons, and prunes the caches of windows that are gone.
SpacesSnapshot enumerate(WithWindows withWindows = WithWindows::yes);

/// The numbers of the windows on one space, front to back.
std::vector<WindowID> ids(SpaceID onSpace);
/// Position in `snapshot.desktops` of the desktop that the display shows.
std::optional<int> currentDesktopIndex(const SpacesSnapshot& snapshot, const std::string& displayUUID);
/// Position of the first desktop that the snapshot itself marks as current.
std::optional<int> firstCurrentIndex(const SpacesSnapshot& snapshot);

/// The frontmost application's frontmost ordinary window.
std::optional<SpaceWindow> focusedWindow();
/// The spaces that a window is on; empty when the window server does not know it.
std::set<SpaceID> workspaces(WindowID ofWindow);
/// Whether the screen's display shows something else than an ordinary desktop; false when unknown.
bool isCurrentSpaceRestricted(const ScreenRef& screen);

/// Notes and recalls the space last switched to on a display; guarded by a lock of its own.
void rememberActiveSpace(SpaceID space, const std::string& displayUUID);
std::optional<SpaceID> cachedActiveSpaceID(const std::string& displayUUID);

/// Stores the preview of a window for the snapshots to come.
void cacheThumbnail(WindowID window, ImageRef preview);
/// Forgets everything that this module keeps between calls: caches and remembered desktops.
void forgetEverything();

}  // namespace tessaspaces::Spaces
