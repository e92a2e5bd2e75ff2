#pragma once

#include <QPainter>
#include <QRect>
#include <QString>
#include <string_view>

#include "ui/DevicePixels.h"
#include "ui/PictureCache.h"
#include "ui/ShadowPatch.h"
#include "ui/Theme.h"

namespace tessaspaces {

/// What the parts of a scene are drawn with, for one theme and scale. All drawing is in device pixels. Main thread.
class PaintKit {
 public:
  PaintKit() = default;
  PaintKit(const Theme& theme, double scale);

  Theme theme;
  DevicePixels pixels;
  PictureCache pictures;
  ShadowPatch tileShadow;
  ShadowPatch windowShadow;
  ShadowPatch carriedShadow;
  ShadowPatch badgeShadow;
  /// Around what is selected, and what a filter matches best.
  ShadowPatch selectionGlow;
  ShadowPatch accentGlow;

  /// The system's font, that many points high.
  [[nodiscard]] QFont font(double points, QFont::Weight weight = QFont::Normal) const {
    return Theme::font(points * pixels.scale, weight);
  }
  [[nodiscard]] int length(double points) const { return pixels.length(points); }

  /// Corners of a tile's content and of a preview, in pixels, by their size: less on small ones.
  [[nodiscard]] int tileCorner(const Rect& content) const;
  [[nodiscard]] int windowCorner(const Rect& window) const;
};

/// A line of text as it is drawn: spaces for line breaks, and as much of it as there is room for, with an ellipsis.
struct TextLine {
  QString text;
  QFont font;
  int width = 0;
  int height = 0;

  TextLine() = default;
  TextLine(const QString& whole, const QFont& font, int room);
  /// In the vertical middle of the rectangle, at its left.
  void draw(QPainter& painter, const QRect& in, const QColor& color) const;
};

/// A band around a rounded rectangle, from `out` pixels outside its edge to `out + width`.
void drawRing(QPainter& painter, const QRect& around, int corner, double out, double width, const QColor& color);
void fillRounded(QPainter& painter, const QRect& rect, double corner, const QColor& color);
void drawDashed(QPainter& painter, const QRect& rect, double corner, double width, const QColor& color);

/// `color`, so much of it.
[[nodiscard]] QColor faded(QColor color, double opacity);

}  // namespace tessaspaces
