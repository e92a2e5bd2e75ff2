#include "ui/HeaderPainter.h"

#include <algorithm>

#include "grid/GridLayout.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

constexpr double margin = GridLayout::margin + 6;
constexpr double titleFont = 17;
constexpr double hintFont = 12;
constexpr double hintHeight = 18;
/// Between the badges below the last row and the hint.
constexpr double belowBadges = 14;
constexpr double fieldWidth = 380;
constexpr double fieldPart = 0.4;
constexpr double fieldHeight = 30;
constexpr double fieldFont = 13.5;
constexpr double fieldPadding = 11;
constexpr double spacing = 10;

QString matchesText(int matches) {
  if (matches == 0) return localized("grid.filter.none");
  return matches == 1 ? localized("grid.filter.one") : localized("grid.filter.matches", matches);
}

/// A small keyboard.
void paintKeyboard(QPainter& painter, const QRect& at, int line, const QColor& color) {
  drawRing(painter, at, line * 2, -line, line, color);
  const int key = std::max(1, line);
  const int step = std::max(2, (at.width() - 4 * line) / 4);
  for (int row = 0; row < 2; ++row) {
    for (int i = 0; i < 4; ++i) {
      painter.fillRect(QRect(at.x() + 3 * line + i * step, at.y() + at.height() * (row + 1) / 4 - key / 2, key, key),
                       color);
    }
  }
  painter.fillRect(QRect(at.x() + at.width() / 4, at.y() + at.height() * 3 / 4 - key / 2, at.width() / 2, key), color);
}

void paintMagnifier(QPainter& painter, const QRect& at, double line, const QColor& color) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(color, line, Qt::SolidLine, Qt::RoundCap));
  const double lens = at.width() * 0.68;
  painter.drawEllipse(QRectF(at.x() + line / 2, at.y() + line / 2, lens, lens));
  const double from = lens * 0.88 + line / 2;
  const double to = at.width() - line / 2;
  painter.drawLine(QPointF(at.x() + from, at.y() + from), QPointF(at.x() + to, at.y() + to));
  painter.setRenderHint(QPainter::Antialiasing, false);
}

}  // namespace

QRect HeaderPainter::strip(const GridScene& scene) const {
  return kit_.pixels.rect({0, scene.menuBarInset, scene.bounds.width, GridLayout::headerHeight});
}

QRect HeaderPainter::bounds(const GridScene& scene) const {
  // The field casts a shadow, and texts stand a little lower than the middle of the strip.
  const QRect top = strip(scene);
  return top.adjusted(0, -top.height() / 2, 0, top.height() / 2);
}

QRect HeaderPainter::fieldRect(const GridScene& scene) const {
  if (!scene.keyboard && scene.filter.empty()) return {};
  const double width = std::min(fieldWidth, scene.bounds.width * fieldPart);
  const double room = GridLayout::headerHeight + GridLayout::margin / 2;
  return kit_.pixels.rect(
      {(scene.bounds.width - width) / 2, scene.menuBarInset + (room - fieldHeight) / 2, width, fieldHeight});
}

QRect HeaderPainter::hintRect(const GridScene& scene) const {
  if (scene.hint.empty()) return {};
  double below = scene.menuBarInset + GridLayout::headerHeight;
  for (const auto& tile : scene.tiles) below = std::max(below, tile.rect.maxY());
  if (scene.plus) below = std::max(below, scene.plus->rect.maxY());
  const double top = std::max(below + belowBadges, scene.bounds.height - 2 * hintHeight);
  if (top + hintHeight <= scene.bounds.height) {
    return kit_.pixels.rect({margin, top, std::max(0.0, scene.bounds.width - 2 * margin), hintHeight});
  }
  const QRect top_ = strip(scene);
  const int half = kit_.length(std::min(fieldWidth, scene.bounds.width * fieldPart)) / 2 + kit_.length(2 * spacing);
  const int left = top_.center().x() + half;
  return {left, top_.y(), std::max(0, top_.width() - kit_.length(margin) - left),
          top_.height() + kit_.length(GridLayout::margin / 2)};
}

void HeaderPainter::paint(QPainter& painter, const GridScene& scene) const {
  const QRect field = fieldRect(scene);
  const QRect top = strip(scene);
  const int middle = field.isEmpty() ? top.center().x() : field.x();
  paintTitle(painter, scene, middle - kit_.length(spacing));
  if (!field.isEmpty()) paintField(painter, scene, field);
  const QRect hint = hintRect(scene);
  if (hint.isEmpty()) return;
  const TextLine line(text(scene.hint), kit_.font(hintFont), hint.width());
  const bool atTop = hint.y() == top.y();
  const int x = atTop ? hint.right() + 1 - line.width : hint.x() + (hint.width() - line.width) / 2;
  line.draw(painter, QRect(x, hint.y(), line.width, hint.height()), kit_.theme.secondaryText);
}

void HeaderPainter::paintTitle(QPainter& painter, const GridScene& scene, int end) const {
  const QRect top = strip(scene).adjusted(0, 0, 0, kit_.length(GridLayout::margin / 2));
  int x = kit_.length(margin);
  const int mark = scene.keyboard ? kit_.length(22) : 0;
  const int room = end - x - (mark > 0 ? mark + kit_.length(spacing) : 0);
  const TextLine line(text(scene.title), kit_.font(titleFont, QFont::DemiBold), room);
  line.draw(painter, QRect(x, top.y(), line.width, top.height()), kit_.theme.text);
  if (mark == 0 || room < 0) return;
  x += line.width > 0 ? line.width + kit_.length(spacing) : 0;
  const int height = mark * 2 / 3;
  paintKeyboard(painter, QRect(x, top.y() + (top.height() - height) / 2, mark, height), kit_.length(1.5),
                kit_.theme.accent);
}

void HeaderPainter::paintField(QPainter& painter, const GridScene& scene, const QRect& field) const {
  const auto& theme = kit_.theme;
  const bool empty = scene.filter.empty();
  const int corner = field.height() / 2;
  if (empty) {
    fillRounded(painter, field, corner, faded(theme.text, 0.07));
  } else {
    kit_.badgeShadow.draw(painter, field);
    fillRounded(painter, field, corner, theme.surface);
  }
  const int line = kit_.length(1);
  drawRing(painter, field, corner, -line, line, empty ? faded(theme.hairline, 0.7) : theme.accent);

  const QColor quiet = empty ? theme.secondaryText : theme.onSurfaceSecondary;
  QRect rest = field.adjusted(kit_.length(fieldPadding), 0, -kit_.length(fieldPadding + 2), 0);
  const int glass = kit_.length(14);
  paintMagnifier(painter, QRect(rest.x(), rest.y() + (rest.height() - glass) / 2, glass, glass), kit_.length(1.5),
                 quiet);
  rest.setLeft(rest.x() + glass + kit_.length(spacing * 0.8));
  const QFont font = kit_.font(fieldFont);
  if (empty) {
    const TextLine hint(localized("grid.filter.placeholder"), font, rest.width());
    hint.draw(painter, rest, quiet);
    return;
  }
  const TextLine count(matchesText(scene.matches), kit_.font(hintFont), rest.width() / 2);
  count.draw(painter, QRect(rest.right() + 1 - count.width, rest.y(), count.width, rest.height()), quiet);
  rest.setRight(rest.right() - count.width - kit_.length(spacing));
  // What was typed last matters most: a long text is cut at its start.
  const QFontMetrics metrics(font);
  const int caret = kit_.length(1.5);
  TextLine typed;
  typed.font = font;
  typed.text = metrics.elidedText(text(scene.filter), Qt::ElideLeft, rest.width() - 2 * caret);
  typed.width = metrics.horizontalAdvance(typed.text);
  typed.draw(painter, rest, theme.onSurface);
  const int height = field.height() * 3 / 5;
  // Behind the last character: at the left of what is written from the right.
  const bool fromRight = typed.text.isRightToLeft();
  painter.fillRect(QRect(fromRight ? rest.x() - 2 * caret : rest.x() + typed.width + caret,
                         field.y() + (field.height() - height) / 2, caret, height),
                   theme.accent);
}

}  // namespace tessaspaces
