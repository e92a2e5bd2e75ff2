#pragma once

#include <cstdint>
#include <span>

#include "base/Geometry.h"
#include "base/Image.h"

namespace tessaspaces {

/// What lies behind a desktop's windows, put together from what was seen between them: transparent where nothing was.
struct LearnedPicture {
  /// Null while next to nothing was seen.
  ImageRef picture;
  /// The average of what was seen, 0xAARRGGBB, opaque.
  std::uint32_t color = 0xFF000000;
};

/// Adds what a picture of the display shows beside the windows that cover it (rectangles in the picture's pixels, y
/// downwards) to what was known before, which may be null. The same object again where that adds nothing. Any thread.
[[nodiscard]] LearnedPicture learnFrom(const Image& screen, std::span<const Rect> covered, const ImageRef& before);

}  // namespace tessaspaces
