#pragma once

#include <cstdint>
#include <vector>

#include "harness/XConnection.h"

namespace tessaspaces::demo {

/// Pixels 0xRRGGBB that shapes are drawn on, as plainly as can be: what sample windows and wallpapers show. Coordinates
/// from the top left; what lies outside is left out.
class Picture {
 public:
  Picture(int width, int height, std::uint32_t colour);

  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }

  void fill(harness::Rectangle area, std::uint32_t colour);
  /// Rounded by that radius, with smooth edges.
  void card(harness::Rectangle area, int radius, std::uint32_t colour);
  void disc(double x, double y, double radius, std::uint32_t colour);
  /// From one colour at the top to another at the bottom.
  void shade(harness::Rectangle area, std::uint32_t top, std::uint32_t bottom);
  /// Everything below a wavy line: a range of hills.
  void hills(double height, double swing, double length, double shift, std::uint32_t colour);
  /// A run of words as bars, as text looks from far away. `seed` decides their lengths.
  void words(int x, int y, int width, int thickness, std::uint32_t colour, unsigned seed);

  /// As the window's background, which the server itself brings back whenever the window is shown.
  void putInto(const harness::XConnection& connection, xcb_window_t window) const;
  /// As the root window's, with the properties by which others find it.
  void makeWallpaper(const harness::XConnection& connection) const;

 private:
  [[nodiscard]] xcb_pixmap_t upload(const harness::XConnection& connection, std::uint8_t depth) const;
  void blend(int x, int y, std::uint32_t colour, double cover);

  int width_;
  int height_;
  std::vector<std::uint32_t> pixels_;
};

/// 0: the first colour, 1: the second.
[[nodiscard]] std::uint32_t mix(std::uint32_t first, std::uint32_t second, double part);

}  // namespace tessaspaces::demo
