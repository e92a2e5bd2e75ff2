#include "ui/Backdrop.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "ui/PictureCache.h"

namespace tessaspaces {
namespace {

/// The wallpaper is blurred at this width: nothing finer would be left of it anyway.
constexpr int smallWidth = 96;
constexpr int blurRadius = 4;
constexpr int blurPasses = 2;
/// Blurring takes colours out; this puts some back.
constexpr double saturation = 1.25;

/// One pixel of the small picture.
using Colour = std::array<double, 3>;

struct Small {
  int width = 0;
  int height = 0;
  std::vector<Colour> pixels;
  [[nodiscard]] const Colour& at(int x, int y) const {
    return pixels[static_cast<std::size_t>(std::clamp(y, 0, height - 1) * width + std::clamp(x, 0, width - 1))];
  }
};

Colour of(QRgb rgb) {
  return {static_cast<double>(qRed(rgb)), static_cast<double>(qGreen(rgb)), static_cast<double>(qBlue(rgb))};
}

Colour mix(const Colour& from, const Colour& to, double share) {
  Colour mixed;
  for (std::size_t i = 0; i < 3; ++i) mixed[i] = from[i] + (to[i] - from[i]) * share;
  return mixed;
}

Small blurredTurned(const Small& from) {
  Small to{from.height, from.width, std::vector<Colour>(from.pixels.size())};
  for (int y = 0; y < from.height; ++y) {
    for (int x = 0; x < from.width; ++x) {
      Colour sum{};
      for (int i = -blurRadius; i <= blurRadius; ++i) {
        for (std::size_t part = 0; part < 3; ++part) sum[part] += from.at(x + i, y)[part];
      }
      for (auto& part : sum) part /= 2 * blurRadius + 1;
      to.pixels[static_cast<std::size_t>(x * to.width + y)] = sum;
    }
  }
  return to;
}

Small ofWallpaper(const ImageRef& wallpaper, QSize size, const Theme& theme) {
  const int height = std::clamp(smallWidth * size.height() / std::max(1, size.width()), 1, 4 * smallWidth);
  const auto part = coveringPart(*wallpaper, size, 0.5, 0.5);
  // Far more pixels than are needed: first taken down without care, then with.
  QImage image = wrapped(wallpaper).copy(part);
  if (image.width() > 4 * smallWidth) image = image.scaled(4 * smallWidth, 4 * height);
  image = image.scaled(smallWidth, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
              .convertToFormat(QImage::Format_RGB32);
  Small small{smallWidth, height, {}};
  const Colour veil = of(theme.veil.rgb());
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < smallWidth; ++x) {
      const Colour color = of(image.pixel(x, y));
      const double grey = 0.3 * color[0] + 0.59 * color[1] + 0.11 * color[2];
      const Colour strong = mix({grey, grey, grey}, color, saturation);
      Colour veiled = mix(strong, veil, theme.veil.alphaF());
      for (auto& value : veiled) value = std::clamp(value, 0.0, 255.0);
      small.pixels.push_back(veiled);
    }
  }
  for (int pass = 0; pass < blurPasses; ++pass) small = blurredTurned(blurredTurned(small));
  return small;
}

Small gradient(const Theme& theme) {
  return {1, 2, {of(theme.backdropTop.rgb()), of(theme.backdropBottom.rgb())}};
}

/// Thresholds in an order in which no pattern is seen; without them a dark gradient shows bands.
constexpr std::array<std::uint16_t, 64> bayer = {0,  32, 8,  40, 2,  34, 10, 42, 48, 16, 56, 24, 50, 18, 58, 26,
                                                 12, 44, 4,  36, 14, 46, 6,  38, 60, 28, 52, 20, 62, 30, 54, 22,
                                                 3,  35, 11, 43, 1,  33, 9,  41, 51, 19, 59, 27, 49, 17, 57, 25,
                                                 15, 47, 7,  39, 13, 45, 5,  37, 63, 31, 55, 23, 61, 29, 53, 21};

/// Row of the small picture in full width, four values a pixel as QRgb has them in memory, with 8 bits more.
std::vector<std::uint16_t> wideRow(const Small& small, int y, int width) {
  std::vector<std::uint16_t> row;
  row.reserve(4 * static_cast<std::size_t>(width));
  for (int x = 0; x < width; ++x) {
    const double at = (x + 0.5) * small.width / width - 0.5;
    const int left = static_cast<int>(std::floor(at));
    const auto color = mix(small.at(left, y), small.at(left + 1, y), at - left);
    for (const auto value : {color[2], color[1], color[0], 255.0}) {
      // The room above is for the dither.
      row.push_back(static_cast<std::uint16_t>(std::clamp(value * 256, 0.0, 65535.0 - 255)));
    }
  }
  return row;
}

QImage enlarged(const Small& small, QSize size) {
  QImage image(size, QImage::Format_RGB32);
  const int width = size.width();
  std::vector<std::vector<std::uint16_t>> rows;
  for (int y = 0; y < small.height; ++y) rows.push_back(wideRow(small, y, width));
  std::vector<std::uint16_t> dither(4 * static_cast<std::size_t>(width));
  for (int y = 0; y < size.height(); ++y) {
    for (std::size_t i = 0; i < dither.size(); ++i) {
      dither[i] = static_cast<std::uint16_t>(bayer[(static_cast<std::size_t>(y) % 8) * 8 + i / 4 % 8] * 4);
    }
    const double at = (y + 0.5) * small.height / size.height() - 0.5;
    const int above = static_cast<int>(std::floor(at));
    const auto row = [&](int index) {
      return rows[static_cast<std::size_t>(std::clamp(index, 0, small.height - 1))].data();
    };
    const auto* first = row(above);
    const auto* second = row(above + 1);
    const auto weight = static_cast<std::uint32_t>((at - above) * 256);
    auto* out = image.scanLine(y);
    const auto* noise = dither.data();
    const int values = 4 * width;
    for (int i = 0; i < values; ++i) {
      const std::uint32_t mixed = (first[i] * (256 - weight) + second[i] * weight) >> 8U;
      out[i] = static_cast<uchar>((mixed + noise[i]) >> 8U);
    }
  }
  return image;
}

}  // namespace

const QImage& Backdrop::image(const TileBackground& background, QSize size, const Theme& theme) {
  const bool usable = !wrapped(background.image).isNull();
  const ImageRef wallpaper = usable ? background.image : nullptr;
  if (image_.size() != size || wallpaper_ != wallpaper || !(theme_ == theme)) {
    image_ =
        size.isEmpty() ? QImage() : enlarged(wallpaper ? ofWallpaper(wallpaper, size, theme) : gradient(theme), size);
    wallpaper_ = wallpaper;
    theme_ = theme;
  }
  return image_;
}

}  // namespace tessaspaces
