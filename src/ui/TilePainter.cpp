#include "ui/TilePainter.h"

#include <algorithm>

#include "ui/RoundedCorners.h"
#include "ui/Text.h"
#include "ui/WindowPainter.h"

namespace tessaspaces {
namespace {

using Tile = GridScene::Tile;

constexpr double currentRing = 3;
constexpr double selectionRing = 2.5;
/// Between the rings of a tile that is both current and selected.
constexpr double ringGap = 1;
constexpr double dropFill = 0.18;
constexpr double dropRing = 3;
constexpr double hoverLight = 0.07;
constexpr double dimmedVeil = 0.55;

constexpr double badgeHeight = 22;
constexpr double badgePadding = 10;
constexpr double badgeMargin = 10;
constexpr double badgeFont = 12.5;
constexpr double numberGap = 6;
constexpr double dotSide = 7;
/// On tiles narrower than this everything is a little smaller.
constexpr double usualWidth = 150;
constexpr double smallPart = 0.86;

constexpr double fullScreenHeight = 34;
constexpr double fullScreenFont = 14;

constexpr double plusPart = 0.13;
constexpr double largestPlus = 26;
constexpr double plusLine = 2.5;

/// "Desktop 3" needs no "3" before it.
bool saysNumber(const QString& label, const QString& number) {
  return label == number || label.endsWith(QLatin1Char(' ') + number);
}

}  // namespace

struct TilePainter::Badge {
  QRect rect;
  TextLine number;
  TextLine label;
  int padding = 0;
  int gap = 0;
  int dot = 0;
};

QRect TilePainter::outer(const Rect& rect) const {
  return kit_.pixels.rect(rect);
}

QRect TilePainter::opaqueRect(const Tile& tile) const {
  const int corner = kit_.tileCorner(tile.content);
  return contentRect(tile).adjusted(0, corner, 0, -corner);
}

TilePainter::Badge TilePainter::badge(const Tile& tile) const {
  Badge badge;
  const double part = tile.rect.width < usualWidth ? smallPart : 1;
  const int height = kit_.length(badgeHeight * part);
  const QRect content = contentRect(tile);
  const QString number = QString::number(tile.number);
  const QString label = text(tile.label).simplified();
  badge.padding = kit_.length(badgePadding * part);
  badge.dot = tile.current ? kit_.length(dotSide * part) : 0;
  int room = content.width() - 2 * kit_.length(badgeMargin * part) - 2 * badge.padding;
  if (badge.dot > 0) room -= badge.dot + kit_.length(numberGap * part);
  if (!saysNumber(label, number)) {
    badge.number = TextLine(number, kit_.font(badgeFont * part, QFont::DemiBold), room);
    badge.gap = label.isEmpty() ? 0 : kit_.length(numberGap * part);
    room -= badge.number.width + badge.gap;
  }
  badge.label =
      TextLine(label, kit_.font(badgeFont * part, tile.current ? QFont::Bold : QFont::Medium), std::max(0, room));
  if (badge.label.text.isEmpty()) badge.gap = 0;
  int width = badge.number.width + badge.gap + badge.label.width;
  if (width == 0) return badge;
  width += 2 * badge.padding;
  if (badge.dot > 0) width += badge.dot + kit_.length(numberGap * part);
  badge.rect = QRect(content.x() + (content.width() - width) / 2, content.bottom() + 1 - height / 2, width, height);
  return badge;
}

QRect TilePainter::badgeRect(const Tile& tile) const {
  return badge(tile).rect;
}

QRect TilePainter::bounds(const Tile& tile) const {
  const int rings = kit_.length(currentRing + ringGap + selectionRing) + 2;
  const QRect at = outer(tile.rect);
  const QRect badge = badgeRect(tile);
  return kit_.tileShadow.bounds(at) | kit_.selectionGlow.bounds(at.adjusted(-rings, -rings, rings, rings)) |
         (badge.isEmpty() ? QRect() : kit_.badgeShadow.bounds(badge) | badge);
}

QRect TilePainter::bounds(const GridScene::Plus& plus) const {
  const QRect at = outer(plus.rect);
  const int ring = kit_.length(selectionRing) + 2;
  return kit_.selectionGlow.bounds(at.adjusted(-ring, -ring, ring, ring));
}

void TilePainter::collect(const Tile& tile, std::vector<PictureRequest>& requests) const {
  const QSize size = contentRect(tile).size();
  if (tile.background.image && !size.isEmpty()) {
    requests.push_back({tile.background.image, size, coveringPart(*tile.background.image, size, 0.5, 0.5)});
  }
  const WindowPainter windows(kit_);
  for (const auto& window : tile.windows) windows.collect(window, tile.content, requests);
}

void TilePainter::paintDesktop(QPainter& painter, const Tile& tile) {
  const QRect at = contentRect(tile);
  const QRect clip = painter.hasClipping() ? painter.clipBoundingRect().toAlignedRect() : at;
  bool covered = false;
  if (tile.background.image && !at.isEmpty()) {
    const auto& image = tile.background.image;
    const auto& picture = kit_.pictures.picture({image, at.size(), coveringPart(*image, at.size(), 0.5, 0.5)});
    covered = picture.isOpaque();
    if (!covered) painter.fillRect(at, QColor::fromRgb(tile.background.color));
    if (!picture.isNull()) picture.draw(painter, at.topLeft());
  } else {
    painter.fillRect(at, QColor::fromRgb(tile.background.color));
  }
  WindowPainter windows(kit_);
  for (auto window = tile.windows.rbegin(); window != tile.windows.rend(); ++window) {
    if (windows.bounds(*window).intersects(clip)) windows.paint(painter, *window, tile.content);
  }
}

void TilePainter::paintContent(QImage& image, const Tile& tile, bool exploded, QRect dirty) {
  dirty &= image.rect();
  if (dirty.isEmpty()) return;
  const QRect at = contentRect(tile);
  {
    QPainter painter(&image);
    painter.translate(-at.topLeft());
    painter.setClipRect(dirty.translated(at.topLeft()));
    paintDesktop(painter, tile);
    if (!tile.fullScreenApplication.empty()) paintFullScreen(painter, tile);
    if (tile.dimmed) {
      painter.fillRect(at, faded(kit_.theme.dark ? QColor(0x0B, 0x0D, 0x12) : QColor(0xE9, 0xED, 0xF4), dimmedVeil));
    }
    if (tile.hovered) painter.fillRect(at, faded(Qt::white, hoverLight));
    if (tile.dropTarget) painter.fillRect(at, faded(kit_.theme.accent, dropFill));
    if (exploded) {
      WindowPainter windows(kit_);
      for (const auto& window : tile.windows) {
        if (window.look == GridScene::Window::Look::hovered && WindowPainter::isSeen(window)) {
          windows.paintTitle(painter, window, tile.content);
        }
      }
    }
  }
  // What was cut before must not be cut again.
  const int corner = kit_.tileCorner(tile.content);
  RoundedCorners::cut(image, corner, dirty);
  RoundedCorners::outline(image, corner, kit_.length(1), faded(kit_.theme.hairline, tile.hovered ? 2.2 : 0.8), dirty);
}

void TilePainter::paintFullScreen(QPainter& painter, const Tile& tile) const {
  const QRect at = contentRect(tile);
  const double part = std::min(1.0, tile.content.height / usualWidth);
  const int height = kit_.length(fullScreenHeight * part);
  const int padding = height / 2;
  const int glyph = height * 2 / 5;
  const int gap = height / 3;
  const TextLine line(text(tile.fullScreenApplication), kit_.font(fullScreenFont * part, QFont::DemiBold),
                      at.width() - 2 * padding - glyph - gap - kit_.length(badgeMargin));
  if (line.text.isEmpty()) return;
  const int width = line.width + glyph + gap + 2 * padding;
  const QRect pill(at.center().x() - width / 2, at.center().y() - height / 2, width, height);
  const QColor ink = faded(Qt::white, 0.95);
  kit_.badgeShadow.draw(painter, pill);
  fillRounded(painter, pill, height / 2.0, QColor(0x12, 0x14, 0x18, 0xD2));
  // Two corners that point outwards.
  const QRect mark(pill.x() + padding, pill.center().y() - glyph / 2, glyph, glyph);
  const int line2 = kit_.length(1.5 * part);
  const int arm = glyph * 3 / 5;
  painter.fillRect(QRect(mark.right() + 1 - arm, mark.top(), arm, line2), ink);
  painter.fillRect(QRect(mark.right() + 1 - line2, mark.top(), line2, arm), ink);
  painter.fillRect(QRect(mark.left(), mark.bottom() + 1 - line2, arm, line2), ink);
  painter.fillRect(QRect(mark.left(), mark.bottom() + 1 - arm, line2, arm), ink);
  line.draw(painter, pill.adjusted(padding + glyph + gap, 0, -padding, 0), ink);
}

void TilePainter::paintShadow(QPainter& painter, const Tile& tile) const {
  kit_.tileShadow.draw(painter, contentRect(tile));
}

void TilePainter::paintSelection(QPainter& painter, const QRect& at, int corner, double out) const {
  const double width = kit_.length(selectionRing);
  const int reach = static_cast<int>(out + width);
  kit_.selectionGlow.draw(painter, at.adjusted(-reach, -reach, reach, reach));
  drawRing(painter, at, corner, out, width, kit_.theme.selection);
}

void TilePainter::paintRings(QPainter& painter, const Tile& tile) const {
  const QRect at = outer(tile.rect);
  const int corner = kit_.tileCorner(tile.content) + (at.width() - contentRect(tile).width()) / 2;
  if (tile.dropTarget) {
    drawRing(painter, at, corner, 0, kit_.length(dropRing), kit_.theme.accent);
  } else if (tile.current) {
    drawRing(painter, at, corner, 0, kit_.length(currentRing), kit_.theme.accent);
  }
  if (tile.selected) {
    const bool ringed = tile.current || tile.dropTarget;
    paintSelection(painter, at, corner, ringed ? kit_.length(currentRing) + kit_.length(ringGap) : 0);
  }
}

void TilePainter::paintBadge(QPainter& painter, const Tile& tile) const {
  const Badge badge = this->badge(tile);
  if (badge.rect.isEmpty()) return;
  const auto& theme = kit_.theme;
  const double corner = badge.rect.height() / 2.0;
  const double opacity = tile.dimmed ? 0.6 : 1;
  painter.setOpacity(opacity);
  kit_.badgeShadow.draw(painter, badge.rect);
  fillRounded(painter, badge.rect, corner, theme.surface);
  drawRing(painter, badge.rect, badge.rect.height() / 2, -kit_.length(1), kit_.length(1), theme.hairline);
  QRect rest = badge.rect.adjusted(badge.padding, 0, -badge.padding, 0);
  if (badge.dot > 0) {
    const QRect dot(rest.x(), rest.y() + (rest.height() - badge.dot) / 2, badge.dot, badge.dot);
    fillRounded(painter, dot, badge.dot / 2.0, theme.accent);
    rest.setLeft(rest.right() + 1 - badge.number.width - badge.gap - badge.label.width);
  }
  badge.number.draw(painter, rest, theme.onSurfaceSecondary);
  rest.setLeft(rest.x() + badge.number.width + badge.gap);
  badge.label.draw(painter, rest, theme.onSurface);
  painter.setOpacity(1);
}

void TilePainter::paintPlus(QPainter& painter, const GridScene::Plus& plus) const {
  const QRect at = outer(plus.rect);
  if (at.isEmpty()) return;
  const auto& theme = kit_.theme;
  const int corner = kit_.tileCorner(plus.rect);
  const double strength = plus.busy ? 0.5 : 1;
  if (plus.selected) paintSelection(painter, at, corner, 0);
  fillRounded(painter, at, corner, faded(theme.text, plus.hovered && !plus.busy ? 0.16 : 0.05));
  drawDashed(painter, at, corner, kit_.length(1.5), faded(theme.text, (plus.hovered ? 0.75 : 0.4) * strength));
  const QColor ink = faded(theme.text, (plus.hovered ? 0.95 : 0.7) * strength);
  const double arm = std::min(largestPlus, plusPart * std::min(plus.rect.width, plus.rect.height));
  const int half = std::max(2, kit_.length(arm));
  const int line = kit_.length(plusLine);
  const QPoint middle(at.x() + (at.width() - line) / 2, at.y() + (at.height() - line) / 2);
  if (plus.busy) {
    // Three dots: it is coming.
    for (const int step : {-1, 0, 1}) {
      fillRounded(painter, QRect(middle.x() + step * 4 * line - line / 2, middle.y() - line / 2, 2 * line, 2 * line),
                  line, ink);
    }
    return;
  }
  fillRounded(painter, QRect(middle.x() - half, middle.y(), 2 * half + line, line), line / 2.0, ink);
  fillRounded(painter, QRect(middle.x(), middle.y() - half, line, half), 0, ink);
  fillRounded(painter, QRect(middle.x(), middle.y() + line, line, half), 0, ink);
}

}  // namespace tessaspaces
