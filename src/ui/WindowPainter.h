#pragma once

#include <QPainter>
#include <QRect>
#include <vector>

#include "grid/GridScene.h"
#include "ui/PaintKit.h"

namespace tessaspaces {

/// Draws single windows: previews, or what stands in for them.
class WindowPainter {
 public:
  explicit WindowPainter(PaintKit& kit) : kit_(kit) {}

  /// `content` is that of the tile: a preview that ends there is cut off, not squeezed.
  void paint(QPainter& painter, const GridScene::Window& window, const Rect& content);
  /// All that `paint` may touch.
  [[nodiscard]] QRect bounds(const GridScene::Window& window) const;
  /// In the user's hand.
  void paintCarried(QPainter& painter, const GridScene::Window& window, const Rect& rect, double opacity);
  [[nodiscard]] QRect carriedBounds(const Rect& rect) const;

  /// A window's name over its lower edge, within the content.
  void paintTitle(QPainter& painter, const GridScene::Window& window, const Rect& content);

  /// The pictures that drawing it takes.
  void collect(const GridScene::Window& window, const Rect& content, std::vector<PictureRequest>& requests) const;

  static bool isSeen(const GridScene::Window& window) { return !window.rect.isEmpty(); }

 private:
  [[nodiscard]] PictureRequest previewRequest(const GridScene::Window& window, const Rect& rect,
                                              const Rect& content) const;
  [[nodiscard]] PictureRequest iconRequest(const GridScene::Window& window, const Rect& rect) const;
  /// Preview or card, without shadow or rings.
  void paintPicture(QPainter& painter, const GridScene::Window& window, const Rect& rect, const Rect& content);
  void paintCard(QPainter& painter, const GridScene::Window& window, const Rect& rect);

  PaintKit& kit_;
};

}  // namespace tessaspaces
