#include "gallery/Wallpapers.h"

#include <QColor>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <array>
#include <cmath>
#include <memory>

namespace tessaspaces::gallery {
namespace {

struct Palette {
  QColor top, middle, bottom, light, deep;
};

constexpr int palettes = 6;

Palette palette(int number) {
  static const std::array<Palette, palettes> all = {{
      {0x2B2D6E, 0xC2588E, 0xF7B27A, 0xFFE9C4, 0x241B4B},
      {0x0B3954, 0x2A7F9E, 0x9AD4D6, 0xFDF6E3, 0x082A3A},
      {0x14213D, 0x3A5A98, 0x8FA9D9, 0xF1F5FF, 0x0B1226},
      {0x3B1C54, 0x8B3A8F, 0xF08CAE, 0xFFE3EC, 0x220D36},
      {0x13402F, 0x3F8F6B, 0xC9DFA4, 0xFFFBE0, 0x0B281D},
      {0x4A1D1F, 0xB5523B, 0xF2B880, 0xFFF0D8, 0x2B0F14},
  }};
  return all[static_cast<std::size_t>(number % palettes)];
}

QColor mix(const QColor& a, const QColor& b, double share) {
  const auto part = [share](float from, float to) { return static_cast<float>(from + (to - from) * share); };
  return QColor::fromRgbF(part(a.redF(), b.redF()), part(a.greenF(), b.greenF()), part(a.blueF(), b.blueF()));
}

void glow(QPainter& painter, QPointF at, double radius, QColor color, double opacity) {
  QRadialGradient gradient(at, radius);
  color.setAlphaF(static_cast<float>(opacity));
  gradient.setColorAt(0, color);
  color.setAlphaF(static_cast<float>(opacity * 0.35));
  gradient.setColorAt(0.45, color);
  color.setAlphaF(0);
  gradient.setColorAt(1, color);
  painter.fillRect(QRectF(at.x() - radius, at.y() - radius, 2 * radius, 2 * radius), gradient);
}

/// Hills behind hills under a low sun.
void paintDunes(QPainter& painter, const Palette& p, double w, double h, int seed) {
  QLinearGradient sky(0, 0, 0, h * 0.8);
  sky.setColorAt(0, p.top);
  sky.setColorAt(0.55, p.middle);
  sky.setColorAt(1, p.bottom);
  painter.fillRect(QRectF(0, 0, w, h), sky);
  const QPointF sun(w * (0.3 + 0.12 * (seed % 4)), h * 0.46);
  glow(painter, sun, h * 0.62, p.light, 0.55);
  painter.setBrush(p.light);
  painter.setPen(Qt::NoPen);
  painter.drawEllipse(sun, h * 0.075, h * 0.075);
  for (int layer = 0; layer < 6; ++layer) {
    const double base = h * (0.52 + layer * 0.085);
    const double high = h * (0.085 - layer * 0.006);
    QPainterPath hill;
    hill.moveTo(0, h);
    for (int i = 0; i <= 120; ++i) {
      const double x = i / 120.0;
      const double y = std::sin(x * (3.1 + layer) + seed * 1.7 + layer * 2.1) * 0.6 +
                       std::sin(x * (7.3 + layer * 1.3) + seed + layer) * 0.25 +
                       std::sin(x * 17 + layer * 5 + seed) * 0.06;
      hill.lineTo(x * w, base - y * high);
    }
    hill.lineTo(w, h);
    const double depth = layer / 5.0;
    QLinearGradient slope(0, base - high, 0, h);
    slope.setColorAt(0, mix(mix(p.bottom, p.middle, 0.5), p.deep, 0.15 + depth * 0.75));
    slope.setColorAt(1, mix(p.middle, p.deep, 0.45 + depth * 0.55));
    painter.fillPath(hill, slope);
  }
}

/// Soft lights that run into one another.
void paintMesh(QPainter& painter, const Palette& p, double w, double h, int seed) {
  QLinearGradient ground(0, 0, w, h);
  ground.setColorAt(0, p.top);
  ground.setColorAt(1, p.deep);
  painter.fillRect(QRectF(0, 0, w, h), ground);
  const std::array<QColor, 4> lights = {p.middle, p.bottom, p.light, mix(p.middle, p.top, 0.4)};
  for (int i = 0; i < 9; ++i) {
    const double angle = seed * 0.9 + i * 2.4;
    const QPointF at(w * (0.5 + 0.46 * std::cos(angle)), h * (0.5 + 0.5 * std::sin(angle * 1.31)));
    glow(painter, at, w * (0.22 + 0.05 * (i % 4)), lights[static_cast<std::size_t>(i % 4)], i % 4 == 2 ? 0.35 : 0.6);
  }
}

/// Broad ribbons.
void paintWaves(QPainter& painter, const Palette& p, double w, double h, int seed) {
  QLinearGradient ground(0, 0, 0, h);
  ground.setColorAt(0, mix(p.light, p.bottom, 0.35));
  ground.setColorAt(1, p.bottom);
  painter.fillRect(QRectF(0, 0, w, h), ground);
  for (int i = 0; i < 5; ++i) {
    const double y = h * (0.2 + i * 0.17);
    const double swing = h * (0.16 + 0.03 * ((i + seed) % 3));
    QPainterPath ribbon;
    ribbon.moveTo(0, y + swing * std::sin(seed + i));
    ribbon.cubicTo(w * 0.3, y - swing, w * 0.55, y + swing * 1.6, w, y - swing * std::cos(seed + i * 0.7));
    ribbon.lineTo(w, h);
    ribbon.lineTo(0, h);
    QLinearGradient shade(0, y - swing, w, h);
    const double depth = i / 4.0;
    shade.setColorAt(0, mix(p.bottom, p.middle, 0.25 + depth * 0.75));
    shade.setColorAt(1, mix(p.middle, p.top, 0.15 + depth * 0.85));
    painter.fillPath(ribbon, shade);
  }
}

}  // namespace

QImage wallpaper(int number, int width, int height) {
  QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const Palette colors = palette(number);
  const int seed = number / palettes + number;
  switch (number % 3) {
    case 0: paintDunes(painter, colors, width, height, seed); break;
    case 1: paintMesh(painter, colors, width, height, seed); break;
    default: paintWaves(painter, colors, width, height, seed); break;
  }
  return image;
}

ImageRef imageOf(const QImage& image) {
  const QImage pixels = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  auto result = std::make_shared<Image>(Image{pixels.width(), pixels.height(), {}});
  for (int y = 0; y < pixels.height(); ++y) {
    const auto* row = reinterpret_cast<const std::uint32_t*>(pixels.constScanLine(y));
    result->pixels.insert(result->pixels.end(), row, row + pixels.width());
  }
  return result;
}

}  // namespace tessaspaces::gallery
