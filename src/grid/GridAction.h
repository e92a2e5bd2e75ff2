#pragma once

#include <variant>

#include "base/Geometry.h"
#include "bridges/Desktops.h"

namespace tessaspaces {

/// What a panel's root view asks its controller to do.
namespace GridActions {

/// A preview was dropped on a tile of its own panel, perhaps on the one that it came from.
struct MoveWindow {
  WindowID window = 0;
  SpaceID fromSpace = 0;
  DesktopRef to;
  /// Where the top left of the preview came to lie, in the root view.
  Point dropInRoot;
  /// The content of the tile, in the root view: the target's screen in small.
  Rect imageRect;
};
struct SwitchSpace {
  SpaceID space = 0;
};
/// Goes to a desktop and brings one of its windows forward there.
struct SwitchSpaceAndActivate {
  SpaceID space = 0;
  SpaceWindow window;
};
struct Close {};

}  // namespace GridActions

using GridAction = std::variant<GridActions::MoveWindow, GridActions::SwitchSpace, GridActions::SwitchSpaceAndActivate,
                                GridActions::Close>;

}  // namespace tessaspaces
