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
  void collectCarried(const GridScene::Window& window, std::vector<PictureRequest>& requests) const;

  static bool isSeen(const GridScene::Window& window) { return !window.rect.isEmpty(); }

 private:
  /// Where a window is drawn, in pixels as well: one in the user's hand is not cut to a tile.
  struct Place {
    Rect rect;
    QRect at;
    Rect content;
  };
  [[nodiscard]] Place inTile(const GridScene::Window& window, const Rect& content) const;
  [[nodiscard]] Place inHand(const Rect& rect) const;
  /// For the preview, else the icon; with no image where there is neither.
  [[nodiscard]] PictureRequest request(const GridScene::Window& window, const Place& place) const;
  [[nodiscard]] PictureRequest previewRequest(const ImageRef& picture, const Place& place) const;
  [[nodiscard]] PictureRequest iconRequest(const ImageRef& icon, const Place& place) const;
  /// Preview or card, without shadow or rings.
  void paintPicture(QPainter& painter, const GridScene::Window& window, const Place& place);
  void paintCard(QPainter& painter, const GridScene::Window& window, const Place& place);

  PaintKit& kit_;
};

}  // namespace tessaspaces
