#pragma once

#include <cstdint>
#include <string>

#include "base/Geometry.h"
#include "base/Image.h"
#include "platform/WindowCapture.h"

namespace tessaspaces {

/// Where a wallpaper lies. Rectangles are in points, y downwards, from whatever origin they share.
struct WallpaperPlace {
  Rect display;
  /// Encloses all displays.
  Rect allDisplays;
  /// Device pixels per point.
  double scale = 1;
  friend bool operator==(const WallpaperPlace&, const WallpaperPlace&) = default;
};

/// A tile's background as it is drawn: exactly of the size that was asked for, opaque.
struct PaintedBackground {
  ImageRef image;
  /// The average of its pixels, 0xAARRGGBB, opaque.
  std::uint32_t color = 0xFF000000;
  /// Why the wallpaper's picture is not in it, in words; empty: it is.
  std::string complaint;
};

/// What the display shows of the wallpaper, as small as it covers a tile of this size (at least 1 by 1), and the same
/// left over on either side. Reads the picture: this may take long, so any thread but the main one. Of a picture that
/// moves the first frame; of one that cannot be read, the colours and a complaint.
[[nodiscard]] PaintedBackground paintWallpaper(const WallpaperFile& file, const WallpaperPlace& place,
                                               ImageSize pixels);

/// The picture, as small as it covers a tile of this size. Where it is transparent, it is filled up with the colours
/// around. Any thread.
[[nodiscard]] PaintedBackground coverWith(const Image& picture, ImageSize pixels);

}  // namespace tessaspaces
