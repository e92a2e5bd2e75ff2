#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <array>

namespace tessaspaces {

/// A soft shadow (or glow) around rounded rectangles of any size: blurred once, drawn by copying pieces. All in device
/// pixels.
class ShadowPatch {
 public:
  struct Look {
    int corner = 0;  // radius of the rectangle's corners
    int blur = 0;    // how far it reaches out
    int drop = 0;    // how far it lies below the rectangle
    QColor color;
    friend bool operator==(const Look&, const Look&) = default;
  };

  ShadowPatch() = default;
  explicit ShadowPatch(const Look& look);

  /// Draws it around the rectangle. Most of what the rectangle covers is left out.
  void draw(QPainter& painter, const QRect& around) const;
  /// All that `draw` may touch.
  [[nodiscard]] QRect bounds(const QRect& around) const;
  [[nodiscard]] const Look& look() const { return look_; }

 private:
  Look look_;
  int inner_ = 0;  // so far into the rectangle the corners' rounding reaches
  QImage corners_;
  /// Left, top, right, bottom.
  std::array<QImage, 4> edges_;
};

}  // namespace tessaspaces
