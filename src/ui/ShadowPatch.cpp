#include "ui/ShadowPatch.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tessaspaces {
namespace {

/// Edges are drawn in pieces of this length.
constexpr int pieceLength = 256;
constexpr int passes = 3;

/// One box blur of each row, then turned over; two of them blur both ways.
void blurTurned(const std::vector<double>& from, std::vector<double>& to, int side, int radius) {
  const double share = 1.0 / (2 * radius + 1);
  for (int y = 0; y < side; ++y) {
    const auto at = [&](int x) { return x < 0 || x >= side ? 0.0 : from[static_cast<std::size_t>(y * side + x)]; };
    double sum = 0;
    for (int x = -radius; x < radius; ++x) sum += at(x);
    for (int x = 0; x < side; ++x) {
      sum += at(x + radius);
      to[static_cast<std::size_t>(x * side + y)] = sum * share;
      sum -= at(x - radius);
    }
  }
}

/// How much shadow lies on each pixel of a square, `blur` pixels around a rounded one.
std::vector<double> blurred(int side, int blur, int corner) {
  std::vector<double> mask(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      // Distance to the rectangle that is smaller by the corners' radius.
      const double dx = std::max({blur + corner - (x + 0.5), (x + 0.5) - (side - blur - corner), 0.0});
      const double dy = std::max({blur + corner - (y + 0.5), (y + 0.5) - (side - blur - corner), 0.0});
      mask[static_cast<std::size_t>(y * side + x)] = std::clamp(corner - std::hypot(dx, dy) + 0.5, 0.0, 1.0);
    }
  }
  auto turned = mask;
  for (int pass = 0; pass < passes; ++pass) {
    const int radius = (blur + pass) / passes;
    blurTurned(mask, turned, side, radius);
    blurTurned(turned, mask, side, radius);
  }
  return mask;
}

}  // namespace

ShadowPatch::ShadowPatch(const Look& look) : look_(look), inner_(look.corner + look.blur) {
  if (look.blur < 1) return;
  const int piece = look.blur + inner_;
  const int side = 2 * piece + 1;
  const auto mask = blurred(side, look.blur, look.corner);
  const QRgb color = look.color.rgba();
  const auto pixel = [&](int x, int y) {
    const double alpha = mask[static_cast<std::size_t>(y * side + x)] * qAlpha(color);
    return qPremultiply(qRgba(qRed(color), qGreen(color), qBlue(color), static_cast<int>(std::lround(alpha))));
  };
  corners_ = QImage(2 * piece, 2 * piece, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < 2 * piece; ++y) {
    auto* row = reinterpret_cast<QRgb*>(corners_.scanLine(y));
    for (int x = 0; x < 2 * piece; ++x) row[x] = pixel(x < piece ? x : x + 1, y < piece ? y : y + 1);
  }
  for (int edge = 0; edge < 4; ++edge) {
    const bool upright = edge % 2 == 0;
    const bool far = edge > 1;
    QImage& image = edges_[static_cast<std::size_t>(edge)];
    image = upright ? QImage(look.blur, pieceLength, QImage::Format_ARGB32_Premultiplied)
                    : QImage(pieceLength, look.blur, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
      auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
      for (int x = 0; x < image.width(); ++x) {
        const int out = upright ? x : y;
        row[x] = pixel(piece, far ? side - look.blur + out : out);
      }
    }
  }
}

QRect ShadowPatch::bounds(const QRect& around) const {
  return around.translated(0, look_.drop).adjusted(-look_.blur, -look_.blur, look_.blur, look_.blur);
}

void ShadowPatch::draw(QPainter& painter, const QRect& around) const {
  if (look_.blur < 1 || around.isEmpty()) return;
  const QRect outside = bounds(around);
  const int blur = look_.blur;
  const int right = outside.x() + outside.width();
  const int bottom = outside.y() + outside.height();
  // A small rectangle gets as much of each corner as there is room for.
  const int leftPart = std::min(inner_, (around.width() + 1) / 2);
  const int rightPart = std::min(inner_, around.width() / 2);
  const int topPart = std::min(inner_, (around.height() + 1) / 2);
  const int bottomPart = std::min(inner_, around.height() / 2);
  const int end = corners_.width();
  painter.drawImage(outside.topLeft(), corners_, QRect(0, 0, blur + leftPart, blur + topPart));
  painter.drawImage(QPoint(right - blur - rightPart, outside.y()), corners_,
                    QRect(end - blur - rightPart, 0, blur + rightPart, blur + topPart));
  painter.drawImage(QPoint(outside.x(), bottom - blur - bottomPart), corners_,
                    QRect(0, end - blur - bottomPart, blur + leftPart, blur + bottomPart));
  painter.drawImage(QPoint(right - blur - rightPart, bottom - blur - bottomPart), corners_,
                    QRect(end - blur - rightPart, end - blur - bottomPart, blur + rightPart, blur + bottomPart));
  for (int x = outside.x() + blur + leftPart; x < right - blur - rightPart; x += pieceLength) {
    const int length = std::min(pieceLength, right - blur - rightPart - x);
    painter.drawImage(QPoint(x, outside.y()), edges_[1], QRect(0, 0, length, blur));
    painter.drawImage(QPoint(x, bottom - blur), edges_[3], QRect(0, 0, length, blur));
  }
  for (int y = outside.y() + blur + topPart; y < bottom - blur - bottomPart; y += pieceLength) {
    const int length = std::min(pieceLength, bottom - blur - bottomPart - y);
    painter.drawImage(QPoint(outside.x(), y), edges_[0], QRect(0, 0, blur, length));
    painter.drawImage(QPoint(right - blur, y), edges_[2], QRect(0, 0, blur, length));
  }
}

}  // namespace tessaspaces
