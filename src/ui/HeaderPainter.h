#pragma once

#include <QPainter>
#include <QRect>

#include "grid/GridScene.h"
#include "ui/PaintKit.h"

namespace tessaspaces {

/// Draws what stands around the grid: the display's name, what is typed to filter, and the hint.
class HeaderPainter {
 public:
  explicit HeaderPainter(PaintKit& kit) : kit_(kit) {}

  void paint(QPainter& painter, const GridScene& scene) const;
  /// All that name and filter touch.
  [[nodiscard]] QRect bounds(const GridScene& scene) const;
  /// Where the hint is: below the grid where there is room, else in the strip at the top. Empty without one.
  [[nodiscard]] QRect hintRect(const GridScene& scene) const;

 private:
  /// The strip at the top that name and filter lie in.
  [[nodiscard]] QRect strip(const GridScene& scene) const;
  [[nodiscard]] QRect fieldRect(const GridScene& scene) const;
  void paintTitle(QPainter& painter, const GridScene& scene, int end) const;
  void paintField(QPainter& painter, const GridScene& scene, const QRect& field) const;

  PaintKit& kit_;
};

}  // namespace tessaspaces
