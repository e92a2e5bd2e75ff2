#pragma once

#include <QImage>
#include <QPainter>
#include <QRectF>

#include "grid/GridPanelView.h"
#include "ui/ScenePainter.h"

namespace tessaspaces {

/// The frames of a zoom between a panel and one of its tiles, from pictures that are made once at the start. Main
/// thread.
class ZoomAnimation {
 public:
  /// Takes its pictures of the scene that the painter has now.
  ZoomAnimation(ScenePainter& painter, const GridPanelView::Zoom& zoom);

  /// Draws the whole panel as it is at that part of the duration, 0...1. A zoom in starts with the panel and ends with
  /// the rectangle over all of it, a zoom out the other way round.
  void paint(QPainter& painter, double progress) const;
  /// Where the zoomed rectangle is then, in points.
  [[nodiscard]] QRectF rectAt(double progress) const;
  /// The curve that the movement follows: starts and ends gently.
  static double eased(double progress);

 private:
  GridPanelView::Zoom zoom_;
  QSizeF bounds_;
  QImage panel_;
  QImage content_;
};

}  // namespace tessaspaces
