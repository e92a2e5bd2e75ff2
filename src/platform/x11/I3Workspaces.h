#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/x11/I3Socket.h"
#include "platform/x11/Monitors.h"

namespace tessaspaces {

// i3 has no number of desktops that could be set: a workspace comes by being visited, and goes when it is left without
// windows. Each function takes the monitor that the workspaces belong to, and returns false, with nothing changed,
// when i3 gives no sense or cannot do it; true says nothing about the end.

/// Opens a workspace on the monitor: the next number that is neither in use nor another monitor's by the user's
/// configuration. It has to be shown, and gets the focus, since i3 keeps no empty one that nobody sees. For the same
/// reason it cannot be done while the monitor shows a workspace that is not in `occupied`, the names of those with
/// windows: that one would go as the new one comes.
bool addI3Workspace(I3Socket& socket, const PixelRect& monitor, const std::set<std::string>& occupied);

/// Moves the windows of the workspace to the one before it on the monitor (after it, for the first) and leaves it
/// for that one if it is shown; without windows and out of sight it is gone.
bool removeI3Workspace(I3Socket& socket, const PixelRect& monitor, const std::string& name);

/// A line "workspace NAME output OUTPUT..." of a configuration: the number that the name begins with, and the first of
/// the outputs.
struct I3Assignment {
  int number = -1;
  std::string output;
  friend bool operator==(const I3Assignment&, const I3Assignment&) = default;
};
/// Those of a configuration whose names begin with a number.
[[nodiscard]] std::vector<I3Assignment> parseI3Assignments(std::string_view config);

}  // namespace tessaspaces
