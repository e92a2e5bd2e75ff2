#include "ui/PaintKit.h"

#include <QFontMetrics>
#include <QPainterPath>
#include <algorithm>

namespace tessaspaces {
namespace {

constexpr double largestTileCorner = 10;
constexpr double tileCornerPart = 0.045;
constexpr double largestWindowCorner = 6;
constexpr double windowCornerPart = 0.06;
constexpr double leastCorner = 2;

int cornerOf(const DevicePixels& pixels, const Rect& rect, double part, double largest) {
  return pixels.length(std::clamp(std::min(rect.width, rect.height) * part, leastCorner, largest));
}

}  // namespace

QColor faded(QColor color, double opacity) {
  color.setAlphaF(color.alphaF() * static_cast<float>(opacity));
  return color;
}

PaintKit::PaintKit(const Theme& withTheme, double scale) : theme(withTheme), pixels{scale} {
  const auto patch = [this](double corner, double blur, double drop, const QColor& color) {
    return ShadowPatch({length(corner), length(blur), length(drop), color});
  };
  tileShadow = patch(largestTileCorner, 18, 6, theme.shadow);
  windowShadow = patch(largestWindowCorner, 7, 2, faded(theme.shadow, 0.8));
  carriedShadow = patch(largestWindowCorner, 22, 9, faded(theme.shadow, 1.2));
  badgeShadow = patch(10, 5, 1, faded(theme.shadow, 0.6));
  selectionGlow = patch(largestTileCorner + 2, 13, 0, faded(theme.selection, theme.dark ? 0.55 : 0.4));
  accentGlow = patch(largestWindowCorner, 10, 0, faded(theme.accent, 0.85));
}

int PaintKit::tileCorner(const Rect& content) const {
  return cornerOf(pixels, content, tileCornerPart, largestTileCorner);
}

int PaintKit::windowCorner(const Rect& window) const {
  return cornerOf(pixels, window, windowCornerPart, largestWindowCorner);
}

TextLine::TextLine(const QString& whole, const QFont& withFont, int room) : font(withFont) {
  const QFontMetrics metrics(font);
  text = metrics.elidedText(whole.simplified(), Qt::ElideRight, std::max(0, room));
  width = metrics.horizontalAdvance(text);
  if (width > room) {  // not even the ellipsis fits
    text.clear();
    width = 0;
  }
  height = metrics.height();
}

void TextLine::draw(QPainter& painter, const QRect& in, const QColor& color) const {
  if (text.isEmpty()) return;
  painter.setFont(font);
  painter.setPen(color);
  const QFontMetrics metrics(font);
  // The middle of the capitals looks like the middle of the line.
  const int baseline = in.y() + (in.height() + metrics.capHeight()) / 2;
  painter.drawText(QPoint(in.x(), baseline), text);
}

void drawRing(QPainter& painter, const QRect& around, int corner, double out, double width, const QColor& color) {
  const auto outset = [&](double by) { return QRectF(around).adjusted(-by, -by, by, by); };
  QPainterPath path;
  path.addRoundedRect(outset(out + width), corner + out + width, corner + out + width);
  const double inner = std::max(0.0, corner + out);
  path.addRoundedRect(outset(out), inner, inner);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(path, color);
  painter.setRenderHint(QPainter::Antialiasing, false);
}

void fillRounded(QPainter& painter, const QRect& rect, double corner, const QColor& color) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  painter.drawRoundedRect(rect, corner, corner);
  painter.setBrush(Qt::NoBrush);
  painter.setRenderHint(QPainter::Antialiasing, false);
}

void drawDashed(QPainter& painter, const QRect& rect, double corner, double width, const QColor& color) {
  painter.setRenderHint(QPainter::Antialiasing);
  QPen pen(color, width, Qt::CustomDashLine, Qt::RoundCap);
  pen.setDashPattern({3.2, 3.2});
  painter.setPen(pen);
  painter.setBrush(Qt::NoBrush);
  const double half = width / 2;
  painter.drawRoundedRect(QRectF(rect).adjusted(half, half, -half, -half), corner, corner);
  painter.setRenderHint(QPainter::Antialiasing, false);
}

}  // namespace tessaspaces
