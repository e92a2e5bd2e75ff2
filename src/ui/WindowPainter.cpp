#include "ui/WindowPainter.h"

#include <algorithm>
#include <cmath>

#include "grid/GridLayout.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

using Window = GridScene::Window;
using Look = GridScene::Window::Look;

constexpr double dimmedOpacity = 0.35;
/// Rounding makes a preview's aspect differ from its window's by this much; more means that it is cut off.
constexpr double sameAspect = 0.03;
/// Cards lower than this have no title bar.
constexpr double leastForBar = 44;
constexpr double barHeight = 12;
constexpr double largestBarPart = 0.16;
/// Smaller than this there is no room for an icon to be recognised.
constexpr double leastIcon = 5;
/// Icons are enlarged no further: they would only get blurred.
constexpr double largestIcon = 1.5;
/// In points, for the letter that stands in for one.
constexpr double largestLetter = 72;
constexpr double bestRing = 3;
constexpr double litRing = 1.5;
constexpr double hoverRing = 2;
constexpr double titleHeight = 22;
constexpr double titlePadding = 9;
constexpr double titleGap = 4;

bool near(double a, double b) {
  return std::abs(a - b) < 0.5;
}

/// 0 keeps the near side, 1 the far one: a window that hangs over the near edge shows its far side.
double keptSide(bool overNear, bool overFar) {
  if (overNear == overFar) return 0.5;
  return overNear ? 1 : 0;
}

}  // namespace

WindowPainter::Place WindowPainter::inTile(const Window& window, const Rect& content) const {
  return {window.rect, kit_.pixels.rect(window.rect), content};
}

WindowPainter::Place WindowPainter::inHand(const Rect& rect) const {
  return {rect, kit_.pixels.moving(rect), rect};
}

PictureRequest WindowPainter::previewRequest(const ImageRef& picture, const Place& place) const {
  const auto& [rect, at, content] = place;
  PictureRequest request{picture,
                         at.size(),
                         QRect(0, 0, picture->width, picture->height),
                         kit_.windowCorner(rect),
                         kit_.length(1),
                         faded(kit_.theme.hairline, 1.2).rgba()};
  if (picture->width < 1 || picture->height < 1 || at.isEmpty()) return request;
  const double stretch = (static_cast<double>(at.width()) / at.height()) * picture->height / picture->width;
  const bool left = near(rect.minX(), content.minX());
  const bool right = near(rect.maxX(), content.maxX());
  const bool top = near(rect.minY(), content.minY());
  const bool bottom = near(rect.maxY(), content.maxY());
  const bool cutAcross = stretch < 1 - sameAspect && (left || right);
  const bool cutDown = stretch > 1 + sameAspect && (top || bottom);
  if (cutAcross || cutDown) {
    request.part = coveringPart(*picture, at.size(), keptSide(left, right), keptSide(top, bottom));
  }
  return request;
}

PictureRequest WindowPainter::iconRequest(const ImageRef& icon, const Place& place) const {
  const QSize room = kit_.pixels.moving(GridLayout::iconRect(place.rect)).size();
  const QRect whole(0, 0, icon->width, icon->height);
  const QSize most = (QSizeF(whole.size()) * largestIcon).toSize();
  return {icon, whole.size().scaled(room.boundedTo(most), Qt::KeepAspectRatio), whole};
}

PictureRequest WindowPainter::request(const Window& window, const Place& place) const {
  if (window.picture) return previewRequest(window.picture, place);
  return window.icon ? iconRequest(window.icon, place) : PictureRequest{};
}

void WindowPainter::collect(const Window& window, const Rect& content, std::vector<PictureRequest>& requests) const {
  if (isSeen(window)) requests.push_back(request(window, inTile(window, content)));
}

void WindowPainter::collectCarried(const Window& window, std::vector<PictureRequest>& requests) const {
  if (isSeen(window)) requests.push_back(request(window, inHand(window.rect)));
}

QRect WindowPainter::bounds(const Window& window) const {
  const QRect at = kit_.pixels.rect(window.rect);
  const int ring = kit_.length(bestRing) + 2;
  return at.adjusted(-ring, -ring, ring, ring) | kit_.windowShadow.bounds(at) | kit_.accentGlow.bounds(at);
}

void WindowPainter::paint(QPainter& painter, const Window& window, const Rect& content) {
  if (!isSeen(window)) return;
  const QRect at = kit_.pixels.rect(window.rect);
  if (at.isEmpty()) return;
  const int corner = kit_.windowCorner(window.rect);
  const auto& theme = kit_.theme;
  if (window.look == Look::lifted) {
    fillRounded(painter, at, corner, faded(Qt::black, 0.18));
    drawDashed(painter, at, corner, kit_.length(1.5), faded(Qt::white, 0.7));
    return;
  }
  if (window.look == Look::dimmed) painter.setOpacity(dimmedOpacity);
  kit_.windowShadow.draw(painter, at);
  if (window.look == Look::best) kit_.accentGlow.draw(painter, at);
  paintPicture(painter, window, inTile(window, content));
  painter.setOpacity(1);
  switch (window.look) {
    case Look::best: drawRing(painter, at, corner, 0, kit_.length(bestRing), theme.accent); break;
    case Look::lit: drawRing(painter, at, corner, 0, kit_.length(litRing), faded(theme.accent, 0.9)); break;
    case Look::hovered:
      fillRounded(painter, at, corner, faded(Qt::white, 0.09));
      drawRing(painter, at, corner, 0, kit_.length(hoverRing), Qt::white);
      drawRing(painter, at, corner, kit_.length(hoverRing), kit_.length(0.5), faded(Qt::black, 0.35));
      break;
    case Look::plain:
    case Look::dimmed:
    case Look::lifted: break;
  }
}

void WindowPainter::paintPicture(QPainter& painter, const Window& window, const Place& place) {
  if (window.picture) {
    const auto& picture = kit_.pictures.picture(previewRequest(window.picture, place));
    if (!picture.isNull()) {
      picture.draw(painter, place.at.topLeft());
      return;
    }
  }
  paintCard(painter, window, place);
}

void WindowPainter::paintCard(QPainter& painter, const Window& window, const Place& place) {
  const auto& theme = kit_.theme;
  const auto& [rect, at, content] = place;
  const int corner = kit_.windowCorner(rect);
  fillRounded(painter, at, corner, theme.card);
  if (rect.height >= leastForBar) {
    const int bar = kit_.length(std::min(barHeight, rect.height * largestBarPart));
    painter.save();
    painter.setClipRect(QRect(at.x(), at.y(), at.width(), bar), Qt::IntersectClip);
    fillRounded(painter, at, corner, theme.cardBar);
    painter.restore();
    const int dot = std::max(2, bar / 3);
    const int y = at.y() + (bar - dot) / 2;
    for (int i = 0; i < 3; ++i) {
      const QRect button(at.x() + bar / 2 + i * dot * 2, y, dot, dot);
      if (button.right() < at.right() - bar / 2) fillRounded(painter, button, dot / 2.0, theme.onSurfaceSecondary);
    }
  }
  drawRing(painter, at, corner, -kit_.length(1), kit_.length(1), theme.hairline);
  const Rect icon = GridLayout::iconRect(rect);
  if (icon.width < leastIcon) return;
  const int room = kit_.length(icon.width);
  const QRect iconAt(at.x() + (at.width() - room) / 2, at.y() + (at.height() - room) / 2, room, room);
  if (window.icon) {
    const auto request = iconRequest(window.icon, place);
    const auto& picture = kit_.pictures.picture(request);
    if (!picture.isNull()) {
      picture.draw(painter, iconAt.topLeft() + QPoint((iconAt.width() - request.size.width()) / 2,
                                                      (iconAt.height() - request.size.height()) / 2));
      return;
    }
  }
  // No picture of any kind: the first letter of its name says a little.
  const QString name = text(window.application.empty() ? window.title : window.application).simplified();
  const int side = std::min(iconAt.width(), kit_.length(largestLetter));
  const QRect square(iconAt.center().x() - side / 2, iconAt.center().y() - side / 2, side, side);
  fillRounded(painter, square, side * 0.22, faded(theme.accent, 0.85));
  const TextLine letter(name.left(name.size() > 1 && name.at(0).isHighSurrogate() ? 2 : 1).toUpper(),
                        Theme::font(side * 0.5, QFont::DemiBold), side);
  letter.draw(painter, square.adjusted((side - letter.width) / 2, 0, 0, 0), theme.onAccent);
}

void WindowPainter::paintTitle(QPainter& painter, const Window& window, const Rect& content) {
  const QRect at = kit_.pixels.rect(window.rect);
  const QRect within = kit_.pixels.rect(content.inset(titleGap, titleGap));
  const int padding = kit_.length(titlePadding);
  const TextLine line(text(window.title.empty() ? window.application : window.title), kit_.font(12, QFont::Medium),
                      within.width() - 2 * padding);
  if (line.text.isEmpty()) return;
  const int height = kit_.length(titleHeight);
  const int width = line.width + 2 * padding;
  const int x = std::clamp(at.center().x() - width / 2, within.left(), within.right() + 1 - width);
  // Below the preview, or over its lower part where the tile ends.
  const int y = std::min(at.bottom() + 1 + kit_.length(titleGap), within.bottom() + 1 - height);
  const QRect pill(x, y, width, height);
  kit_.badgeShadow.draw(painter, pill);
  fillRounded(painter, pill, height / 2.0, QColor(0x12, 0x14, 0x18, 0xE6));
  line.draw(painter, pill.adjusted(padding, 0, -padding, 0), faded(Qt::white, 0.95));
}

QRect WindowPainter::carriedBounds(const Rect& rect) const {
  return kit_.carriedShadow.bounds(kit_.pixels.moving(rect));
}

void WindowPainter::paintCarried(QPainter& painter, const Window& window, const Rect& rect, double opacity) {
  if (rect.isEmpty()) return;
  painter.setOpacity(opacity);
  const Place place = inHand(rect);
  kit_.carriedShadow.draw(painter, place.at);
  paintPicture(painter, window, place);
  painter.setOpacity(1);
}

}  // namespace tessaspaces
