#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace tessaspaces {

/// A picture as plain pixels: rows from top to bottom, without padding, each pixel 0xAARRGGBB with
/// premultiplied alpha. Sizes are in device pixels.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;

  friend bool operator==(const Image&, const Image&) = default;
};

/// Images are shared and never changed once made; null means "no image".
using ImageRef = std::shared_ptr<const Image>;

}  // namespace tessaspaces
