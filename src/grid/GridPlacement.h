#pragma once

#include <optional>

#include "base/Geometry.h"

namespace tessaspaces {

/// Where a window is to stand whose preview was dropped on a tile.
struct GridPlacement {
  /// The window's frame now, and the screens below, in window coordinates (origin at the top left of the primary
  /// display, y downwards).
  Rect window;
  /// Top left of the preview, and the content of the tile that shows the screen in small, both in one view.
  Point drop;
  Rect image;
  /// The tile's screen, and what panels and docks leave of it.
  Rect screen;
  Rect visible;
  /// The window comes from another screen: made smaller where this one has no room for it.
  bool otherScreen = false;

  /// The frame for the window, in whole points: on the visible part of the screen as far as it fits there, by its top
  /// left otherwise. Absent when it is to stay as it is: it is there already, fills its screen (moving would end that),
  /// or the tile shows no screen.
  [[nodiscard]] std::optional<Rect> frame() const;
};

}  // namespace tessaspaces
