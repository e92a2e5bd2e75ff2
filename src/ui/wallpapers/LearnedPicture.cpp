#include "ui/wallpapers/LearnedPicture.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace tessaspaces {
namespace {

// Less than this part of the desktop tells nothing of the rest.
constexpr double leastKnown = 0.02;

void hide(Image& image, const Rect& rect) {
  const auto clamped = [](double value, int most) { return static_cast<int>(std::clamp(value, 0.0, double(most))); };
  const int left = clamped(std::floor(rect.minX()), image.width);
  const int right = clamped(std::ceil(rect.maxX()), image.width);
  const int bottom = clamped(std::ceil(rect.maxY()), image.height);
  for (int y = clamped(std::floor(rect.minY()), image.height); y < bottom; ++y) {
    const auto row = image.pixels.begin() + static_cast<std::ptrdiff_t>(y) * image.width;
    std::fill(row + left, row + std::max(left, right), 0U);
  }
}

}  // namespace

LearnedPicture learnFrom(const Image& screen, std::span<const Rect> covered, const ImageRef& before) {
  auto learned = std::make_shared<Image>(screen);
  for (const auto& rect : covered) hide(*learned, rect);
  if (before && before->width == screen.width && before->height == screen.height) {
    for (std::size_t i = 0; i < learned->pixels.size(); ++i) {
      if (learned->pixels[i] == 0) learned->pixels[i] = before->pixels[i];
    }
  }
  std::uint64_t known = 0;
  std::uint64_t red = 0;
  std::uint64_t green = 0;
  std::uint64_t blue = 0;
  for (const auto pixel : learned->pixels) {
    if (pixel >> 24U != 0xFF) continue;
    ++known;
    red += pixel >> 16U & 0xFFU;
    green += pixel >> 8U & 0xFFU;
    blue += pixel & 0xFFU;
  }
  if (static_cast<double>(known) < leastKnown * static_cast<double>(learned->pixels.size()) || known == 0) return {};
  const auto color = 0xFF000000U | static_cast<std::uint32_t>(red / known << 16U | green / known << 8U | blue / known);
  if (before && *before == *learned) return {before, color};
  return {std::move(learned), color};
}

}  // namespace tessaspaces
