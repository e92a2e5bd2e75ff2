#pragma once

#include <vector>

#include "bridges/Desktops.h"
#include "settings/Settings.h"

namespace tessaspaces::Settings {

/// The desktop of one display that an application's windows are assigned to: the first whose identifier
/// is the assigned one, or the one at the assigned position (from 1). Null when there is none.
DesktopRef resolve(const AppAssignment& assignment, const std::vector<DesktopRef>& desktops);

}  // namespace tessaspaces::Settings
