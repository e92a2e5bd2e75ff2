#pragma once

#include <QImage>
#include <QPainter>
#include <QRegion>
#include <memory>

#include "grid/GridScene.h"
#include "ui/Theme.h"

namespace tessaspaces {

/// Draws the scene of one panel. Keeps what is costly to make (scaled pictures, shadows, the backdrop) from one scene
/// to the next. Points and regions are in the panel's points, origin at its top left, as in GridScene; edges are put on
/// whole device pixels. Main thread.
class ScenePainter {
 public:
  ScenePainter();
  ~ScenePainter();

  /// What is drawn from now on, on a device with `scale` device pixels per point. Returns what looks different from
  /// the scene before: everything for the first one, or when extent, scale or theme changed.
  QRegion setScene(const GridScene& scene, double scale, const Theme& theme);
  [[nodiscard]] const GridScene& scene() const;

  /// Draws all of the scene that lies in the region, which it covers opaquely. The painter is in its device's logical
  /// coordinates; its device has the scale that `setScene` was given. Its state is as before afterwards.
  void paint(QPainter& painter, const QRegion& region);

  /// The whole panel; its devicePixelRatio is the scale.
  [[nodiscard]] QImage render();
  /// What a tile contains, as the desktop would be: square, with no rings or names; `content` is GridScene::Tile's.
  /// Null when there is no such tile.
  [[nodiscard]] QImage renderContent(const Rect& content);
  /// A window's preview as it is drawn at that size, with its shadow, as it looks in the user's hand: `bounds` is what
  /// it covers when its rectangle is `rect`.
  [[nodiscard]] QRectF carriedBounds(const Rect& rect) const;
  void paintCarried(QPainter& painter, const GridScene::Window& window, const Rect& rect, double opacity);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tessaspaces
