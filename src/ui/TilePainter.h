#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>
#include <vector>

#include "grid/GridScene.h"
#include "ui/PaintKit.h"

namespace tessaspaces {

/// Draws tiles: what they contain into a picture of its own, and around that shadow, rings and name.
class TilePainter {
 public:
  explicit TilePainter(PaintKit& kit) : kit_(kit) {}

  /// Everything in the tile, with rounded corners. The picture has the size of the content in pixels; `dirty`, in its
  /// coordinates, is what is drawn anew.
  void paintContent(QImage& image, const GridScene::Tile& tile, bool exploded, QRect dirty);
  /// The wallpaper and the windows and nothing else, `content` pixels large with square corners.
  void paintDesktop(QPainter& painter, const GridScene::Tile& tile);

  /// To be drawn below all contents, and above them.
  void paintShadow(QPainter& painter, const GridScene::Tile& tile) const;
  void paintRings(QPainter& painter, const GridScene::Tile& tile) const;
  void paintBadge(QPainter& painter, const GridScene::Tile& tile) const;
  void paintPlus(QPainter& painter, const GridScene::Plus& plus) const;

  /// All that a tile (the plus) touches.
  [[nodiscard]] QRect bounds(const GridScene::Tile& tile) const;
  [[nodiscard]] QRect bounds(const GridScene::Plus& plus) const;
  /// Where the content lies, and the part of it that its picture covers opaquely.
  [[nodiscard]] QRect contentRect(const GridScene::Tile& tile) const { return kit_.pixels.rect(tile.content); }
  [[nodiscard]] QRect opaqueRect(const GridScene::Tile& tile) const;
  /// The name's badge; empty when there is no room for one.
  [[nodiscard]] QRect badgeRect(const GridScene::Tile& tile) const;

  /// The pictures that drawing it takes.
  void collect(const GridScene::Tile& tile, std::vector<PictureRequest>& requests) const;

 private:
  struct Badge;
  [[nodiscard]] Badge badge(const GridScene::Tile& tile) const;
  [[nodiscard]] QRect outer(const Rect& rect) const;
  void paintFullScreen(QPainter& painter, const GridScene::Tile& tile) const;
  void paintSelection(QPainter& painter, const QRect& at, int corner, double out) const;

  PaintKit& kit_;
};

}  // namespace tessaspaces
