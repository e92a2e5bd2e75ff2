#include "platform/WindowCapture.h"

#include <algorithm>
#include <cmath>

namespace tessaspaces {

ImageSize fitted(ImageSize size, int longestSide) {
  const int longest = std::max(size.width, size.height);
  if (longestSide <= 0 || longest <= longestSide) return size;
  const double scale = double(longestSide) / longest;
  const auto scaled = [&](int side) { return std::max(1, static_cast<int>(std::lround(side * scale))); };
  return {scaled(size.width), scaled(size.height)};
}

ImageSize fitted(ImageSize size, const PreviewLimits& limits) {
  const auto longest = static_cast<double>(std::max({size.width, size.height, 1}));
  // The other way round NaN would go through.
  const double scale = limits.scale > 0 ? std::min(1.0, limits.scale) : 0;
  const auto scaledLongest = static_cast<int>(std::lround(longest * scale));
  return fitted(size, std::clamp(limits.longestSide, 1, std::max(1, scaledLongest)));
}

}  // namespace tessaspaces
