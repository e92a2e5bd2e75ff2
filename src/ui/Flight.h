#pragma once

#include <QPainter>
#include <QRect>

#include "grid/GridScene.h"
#include "ui/ScenePainter.h"

namespace tessaspaces {

/// A window's preview that floats from one rectangle to another over the panel and fades at the end. Main thread.
class Flight {
 public:
  Flight(GridScene::Window window, const Rect& from, const Rect& to);

  /// How long it takes.
  static constexpr double seconds = 0.22;
  /// What it covers at that part of the duration, 0...1, in points; to be drawn anew before it is drawn elsewhere.
  [[nodiscard]] QRect bounds(const ScenePainter& painter, double progress) const;
  /// Draws it, over the scene.
  void paint(QPainter& painter, ScenePainter& scene, double progress) const;

 private:
  [[nodiscard]] Rect rectAt(double progress) const;

  GridScene::Window window_;
  Rect from_;
  Rect to_;
};

}  // namespace tessaspaces
