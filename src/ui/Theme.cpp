#include "ui/Theme.h"

#include <QGuiApplication>
#include <algorithm>

namespace tessaspaces {
namespace {

/// Where the palette has no colour of its own to set things off with.
constexpr QRgb usualAccent = 0xFF3D8BFD;
/// Less saturated than this is grey: it would not stand out as a ring.
constexpr float leastSaturation = 0.25F;

QColor withAlpha(QRgb rgb, double alpha) {
  QColor color(rgb);
  color.setAlphaF(static_cast<float>(alpha));
  return color;
}

/// Light enough to be seen on dark, dark enough on light.
QColor fitting(const QColor& accent, bool dark) {
  float hue = 0;
  float saturation = 0;
  float lightness = 0;
  accent.getHslF(&hue, &saturation, &lightness);
  if (saturation < leastSaturation) QColor(usualAccent).getHslF(&hue, &saturation, &lightness);
  const auto [least, most] = dark ? std::pair(0.55F, 0.72F) : std::pair(0.36F, 0.52F);
  return QColor::fromHslF(std::max(0.0F, hue), saturation, std::clamp(lightness, least, most));
}

double luminance(const QColor& color) {
  return 0.2126 * color.redF() + 0.7152 * color.greenF() + 0.0722 * color.blueF();
}

}  // namespace

Theme Theme::make(bool dark, const QColor& accent) {
  Theme theme;
  theme.dark = dark;
  theme.accent = fitting(accent, dark);
  theme.onAccent = luminance(theme.accent) > 0.6 ? QColor(0x10, 0x12, 0x16) : QColor(Qt::white);
  if (dark) {
    theme.backdropTop = QColor(0x2A, 0x30, 0x3C);
    theme.backdropBottom = QColor(0x12, 0x14, 0x1A);
    theme.veil = withAlpha(0x0B0D12, 0.56);
    theme.text = withAlpha(0xFFFFFF, 0.95);
    theme.secondaryText = withAlpha(0xFFFFFF, 0.66);
    theme.surface = withAlpha(0x1B1D23, 0.94);
    theme.onSurface = withAlpha(0xFFFFFF, 0.93);
    theme.onSurfaceSecondary = withAlpha(0xFFFFFF, 0.58);
    theme.hairline = withAlpha(0xFFFFFF, 0.16);
    theme.selection = QColor(Qt::white);
    theme.card = QColor(0x3A, 0x3F, 0x4A);
    theme.cardBar = QColor(0x4A, 0x50, 0x5D);
    theme.shadow = withAlpha(0x000000, 0.55);
  } else {
    theme.backdropTop = QColor(0xF3, 0xF5, 0xF9);
    theme.backdropBottom = QColor(0xD6, 0xDC, 0xE6);
    theme.veil = withAlpha(0xF4F6FA, 0.70);
    theme.text = withAlpha(0x14161B, 0.94);
    theme.secondaryText = withAlpha(0x14161B, 0.64);
    theme.surface = withAlpha(0xFFFFFF, 0.96);
    theme.onSurface = withAlpha(0x14161B, 0.93);
    theme.onSurfaceSecondary = withAlpha(0x14161B, 0.56);
    theme.hairline = withAlpha(0x000000, 0.16);
    theme.selection = QColor(0x1F, 0x23, 0x2B);
    theme.card = QColor(0xF2, 0xF3, 0xF6);
    theme.cardBar = QColor(0xDF, 0xE2, 0xE8);
    theme.shadow = withAlpha(0x10141E, 0.36);
  }
  return theme;
}

Theme Theme::fromPalette(const QPalette& palette) {
  const bool dark = palette.color(QPalette::Window).lightnessF() < 0.5F;
  return make(dark, palette.color(QPalette::Active, QPalette::Highlight));
}

QFont Theme::font(double pixels, QFont::Weight weight) {
  QFont font = QGuiApplication::font();
  font.setPixelSize(std::max(1, qRound(pixels)));
  font.setWeight(weight);
  return font;
}

}  // namespace tessaspaces
