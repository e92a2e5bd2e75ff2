#pragma once

#include <QRect>
#include <QRegion>
#include <vector>

#include "grid/GridScene.h"
#include "ui/HeaderPainter.h"
#include "ui/TilePainter.h"
#include "ui/WindowPainter.h"

namespace tessaspaces {

/// What looks different in a scene from the one before, in device pixels.
struct SceneChanges {
  /// Everything does: extent or backdrop changed.
  bool all = false;
  QRegion region;
  /// For each tile of the new scene the part of its content, in the panel's pixels, that is to be drawn anew.
  std::vector<QRect> contents;
};

/// Compares two scenes that are drawn with the same kit.
[[nodiscard]] SceneChanges changesBetween(const GridScene& before, const GridScene& after, PaintKit& kit);

/// The background that the backdrop is made from: that of the desktop on display.
[[nodiscard]] const TileBackground& backdropOf(const GridScene& scene);

}  // namespace tessaspaces
