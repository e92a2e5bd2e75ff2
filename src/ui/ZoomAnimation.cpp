#include "ui/ZoomAnimation.h"

#include <QRegion>
#include <algorithm>
#include <cmath>

namespace tessaspaces {
namespace {

/// By this part of the way the tile has become the desktop: no rounded corners, no name.
constexpr double fadeEnd = 0.4;

double between(double from, double to, double share) {
  return from + (to - from) * share;
}

}  // namespace

ZoomAnimation::ZoomAnimation(ScenePainter& painter, const GridPanelView::Zoom& zoom)
    : zoom_(zoom),
      bounds_(painter.scene().bounds.width, painter.scene().bounds.height),
      panel_(painter.render()),
      content_(painter.renderContent(zoom.rect)) {}

double ZoomAnimation::eased(double progress) {
  const double t = std::clamp(progress, 0.0, 1.0);
  // Fast off, long settling: feels prompt without a jolt at either end.
  return t < 0.5 ? 4 * t * t * t : 1 - std::pow(2 - 2 * t, 3) / 2;
}

QRectF ZoomAnimation::rectAt(double progress) const {
  const double moved = eased(progress);
  const double share = zoom_.direction == GridPanelView::Zoom::Direction::in ? moved : 1 - moved;
  const Rect& rect = zoom_.rect;
  if (rect.isEmpty()) return {rect.x, rect.y, rect.width, rect.height};
  // Each moment enlarges by the same factor, which the eye takes for an even speed; the edges stay in step.
  const double width = rect.width * std::pow(bounds_.width() / rect.width, share);
  const double height = rect.height * std::pow(bounds_.height() / rect.height, share);
  const auto start = [](double from, double whole, double least, double length) {
    return whole > least ? from * (whole - length) / (whole - least) : between(from, 0, 1);
  };
  return {start(rect.x, bounds_.width(), rect.width, width), start(rect.y, bounds_.height(), rect.height, height),
          width, height};
}

void ZoomAnimation::paint(QPainter& painter, double progress) const {
  const double moved = eased(progress);
  const double share = zoom_.direction == GridPanelView::Zoom::Direction::in ? moved : 1 - moved;
  const QRectF panel(QPointF(), bounds_);
  if (share <= 0 || zoom_.rect.isEmpty()) {
    painter.drawImage(QPointF(), panel_);
    return;
  }
  const QRectF at = rectAt(progress);
  // The whole panel, so that the rectangle comes to lie there.
  const double across = at.width() / zoom_.rect.width;
  const double down = at.height() / zoom_.rect.height;
  const double opacity = content_.isNull() ? 0 : std::clamp(share / fadeEnd, 0.0, 1.0);
  painter.save();
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const double scale = panel_.devicePixelRatio();
  const QRectF seen(zoom_.rect.x - at.x() / across, zoom_.rect.y - at.y() / down, bounds_.width() / across,
                    bounds_.height() / down);
  const QRectF source(seen.topLeft() * scale, seen.size() * scale);
  if (opacity < 1) {
    painter.drawImage(panel, panel_, source);
  } else {
    // Nothing of it is left where the content lies.
    const QRect hidden = at.toAlignedRect().adjusted(1, 1, -1, -1);
    for (const QRect& rect : QRegion(panel.toAlignedRect()) - hidden) {
      const QRectF part(source.x() + rect.x() / across * scale, source.y() + rect.y() / down * scale,
                        rect.width() / across * scale, rect.height() / down * scale);
      painter.drawImage(QRectF(rect), panel_, part);
    }
  }
  if (opacity > 0) {
    painter.setOpacity(opacity);
    painter.drawImage(share >= 1 ? panel : at, content_, QRectF(content_.rect()));
  }
  painter.restore();
}

}  // namespace tessaspaces
