#include "ui/RoundedCorners.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tessaspaces::RoundedCorners {
namespace {

/// How much of the pixel lies within a quarter circle, its centre being `radius` pixels right of and below the corner.
double covered(int x, int y, double radius, double circle) {
  const double distance = std::hypot(radius - (x + 0.5), radius - (y + 0.5));
  return std::clamp(circle - distance + 0.5, 0.0, 1.0);
}

std::uint32_t scaled(std::uint32_t pixel, std::uint32_t part) {
  const std::uint32_t even = ((pixel & 0x00FF00FFU) * part >> 8U) & 0x00FF00FFU;
  const std::uint32_t odd = ((pixel >> 8U & 0x00FF00FFU) * part) & 0xFF00FF00U;
  return even | odd;
}

std::uint32_t part256(double share) {
  return static_cast<std::uint32_t>(std::lround(share * 256));
}

class Pixels {
 public:
  Pixels(QImage& image, const std::optional<QRect>& within)
      : bits_(reinterpret_cast<std::uint32_t*>(image.bits())),
        stride_(image.bytesPerLine() / 4),
        width_(image.width()),
        height_(image.height()),
        within_(within ? *within & image.rect() : image.rect()) {}

  template <class Change>
  void change(int x, int y, Change change) {
    if (!within_.contains(x, y)) return;
    auto& pixel = bits_[y * stride_ + x];
    pixel = change(pixel);
  }
  /// The pixel in each of the four corners that lies where (x, y) does in the first one.
  template <class Change>
  void changeCorners(int x, int y, Change how) {
    change(x, y, how);
    change(width_ - 1 - x, y, how);
    change(x, height_ - 1 - y, how);
    change(width_ - 1 - x, height_ - 1 - y, how);
  }

 private:
  std::uint32_t* bits_;
  std::ptrdiff_t stride_;
  int width_;
  int height_;
  QRect within_;
};

int fitting(const QImage& image, int radius) {
  return std::clamp(radius, 0, std::min(image.width(), image.height()) / 2);
}

}  // namespace

void cut(QImage& image, int radius, const std::optional<QRect>& within) {
  const int side = fitting(image, radius);
  Pixels pixels(image, within);
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const auto part = part256(covered(x, y, side, side));
      if (part == 256) break;  // the rest of the row lies inside
      pixels.changeCorners(x, y, [part](std::uint32_t pixel) { return scaled(pixel, part); });
    }
  }
}

void outline(QImage& image, int radius, int width, const QColor& color, const std::optional<QRect>& within) {
  const int side = fitting(image, radius);
  const int line = std::min({width, image.width() / 2, image.height() / 2});
  if (line < 1) return;
  const std::uint32_t solid = qPremultiply(color.rgba());
  const auto over = [solid](double share) {
    const auto source = scaled(solid, part256(share));
    const auto rest = 256 - (source >> 24U);
    // Only where something is already: the line does not reach beyond a corner that is cut.
    return [source, rest](std::uint32_t pixel) {
      const auto alpha = (pixel >> 24U) + (pixel >> 31U);
      return scaled(source, alpha) + scaled(pixel, rest);
    };
  };
  Pixels pixels(image, within);
  const int reach = std::max(side, line);
  for (int y = 0; y < reach; ++y) {
    for (int x = 0; x < reach; ++x) {
      if (x >= side || y >= side) {
        if (x < line || y < line) pixels.changeCorners(x, y, over(1));
        continue;
      }
      const double ring = 1 - covered(x, y, side, side - line);
      if (ring > 0) pixels.changeCorners(x, y, over(ring));
    }
  }
  const auto whole = over(1);
  for (int i = 0; i < line; ++i) {
    for (int x = reach; x < image.width() - reach; ++x) {
      pixels.change(x, i, whole);
      pixels.change(x, image.height() - 1 - i, whole);
    }
    for (int y = reach; y < image.height() - reach; ++y) {
      pixels.change(i, y, whole);
      pixels.change(image.width() - 1 - i, y, whole);
    }
  }
}

}  // namespace tessaspaces::RoundedCorners
