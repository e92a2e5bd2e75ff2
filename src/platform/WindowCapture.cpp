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

}  // namespace tessaspaces
