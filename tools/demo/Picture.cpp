#include "demo/Picture.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace tessaspaces::demo {

using harness::Rectangle;

std::uint32_t mix(std::uint32_t first, std::uint32_t second, double part) {
  std::uint32_t mixed = 0;
  for (const unsigned shift : {0U, 8U, 16U}) {
    const double a = first >> shift & 0xFFU;
    const double b = second >> shift & 0xFFU;
    mixed |= static_cast<std::uint32_t>(std::lround(a + (b - a) * part)) << shift;
  }
  return mixed;
}

Picture::Picture(int width, int height, std::uint32_t colour)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), colour) {}

void Picture::blend(int x, int y, std::uint32_t colour, double cover) {
  if (x < 0 || y < 0 || x >= width_ || y >= height_ || cover <= 0) return;
  auto& pixel = pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)];
  pixel = mix(pixel, colour, std::min(1.0, cover));
}

void Picture::fill(Rectangle area, std::uint32_t colour) {
  for (int y = area.y; y < area.y + area.height; ++y) {
    for (int x = area.x; x < area.x + area.width; ++x) blend(x, y, colour, 1);
  }
}

void Picture::card(Rectangle area, int radius, std::uint32_t colour) {
  const double left = area.x + radius;
  const double right = area.x + area.width - radius;
  const double top = area.y + radius;
  const double bottom = area.y + area.height - radius;
  for (int y = area.y; y < area.y + area.height; ++y) {
    for (int x = area.x; x < area.x + area.width; ++x) {
      // How far the pixel's middle is from the rectangle that the corners turn around.
      const double dx = std::max({left - (x + 0.5), x + 0.5 - right, 0.0});
      const double dy = std::max({top - (y + 0.5), y + 0.5 - bottom, 0.0});
      blend(x, y, colour, radius + 0.5 - std::hypot(dx, dy));
    }
  }
}

void Picture::disc(double x, double y, double radius, std::uint32_t colour) {
  for (int row = static_cast<int>(y - radius) - 1; row <= y + radius + 1; ++row) {
    for (int column = static_cast<int>(x - radius) - 1; column <= x + radius + 1; ++column) {
      blend(column, row, colour, radius + 0.5 - std::hypot(column + 0.5 - x, row + 0.5 - y));
    }
  }
}

void Picture::shade(Rectangle area, std::uint32_t top, std::uint32_t bottom) {
  for (int y = 0; y < area.height; ++y) {
    fill({area.x, area.y + y, area.width, 1}, mix(top, bottom, static_cast<double>(y) / area.height));
  }
}

void Picture::hills(double height, double swing, double length, double shift, std::uint32_t colour) {
  for (int x = 0; x < width_; ++x) {
    const double at = x / length + shift;
    const double top =
        height_ - height - swing * (std::sin(at) + 0.5 * std::sin(2.3 * at + 1) + 0.2 * std::sin(5.1 * at));
    blend(x, static_cast<int>(top), colour, 1 - (top - std::floor(top)));
    for (int y = static_cast<int>(top) + 1; y < height_; ++y) blend(x, y, colour, 1);
  }
}

void Picture::words(int x, int y, int width, int thickness, std::uint32_t colour, unsigned seed) {
  std::mt19937 random(seed);
  const int end = x + width;
  while (x < end - thickness * 2) {
    const int length = std::min(end - x, thickness * static_cast<int>(2 + random() % 7));
    card({x, y, length, thickness}, thickness / 3, colour);
    x += length + thickness;
  }
}

xcb_pixmap_t Picture::upload(const harness::XConnection& connection, std::uint8_t depth) const {
  xcb_connection_t* x = connection.get();
  const xcb_pixmap_t pixmap = xcb_generate_id(x);
  xcb_create_pixmap(x, depth, pixmap, connection.root(), static_cast<std::uint16_t>(width_),
                    static_cast<std::uint16_t>(height_));
  const xcb_gcontext_t context = xcb_generate_id(x);
  xcb_create_gc(x, context, pixmap, 0, nullptr);
  // A request holds 256 KiB without extensions.
  const int rows = std::max(1, 200'000 / (width_ * 4));
  for (int y = 0; y < height_; y += rows) {
    const int height = std::min(rows, height_ - y);
    const auto* data = reinterpret_cast<const std::uint8_t*>(pixels_.data() + static_cast<std::size_t>(y) *
                                                                                  static_cast<std::size_t>(width_));
    xcb_put_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, static_cast<std::uint16_t>(width_),
                  static_cast<std::uint16_t>(height), 0, static_cast<std::int16_t>(y), 0, depth,
                  static_cast<std::uint32_t>(width_ * height * 4), data);
  }
  xcb_free_gc(x, context);
  return pixmap;
}

void Picture::putInto(const harness::XConnection& connection, xcb_window_t window) const {
  const xcb_pixmap_t pixmap = upload(connection, connection.screen().root_depth);
  xcb_change_window_attributes(connection.get(), window, XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(connection.get(), 0, window, 0, 0, 0, 0);
  xcb_free_pixmap(connection.get(), pixmap);
  connection.roundTrip();
}

void Picture::makeWallpaper(const harness::XConnection& connection) const {
  // It stays for as long as the connection, which is the session's own.
  const xcb_pixmap_t pixmap = upload(connection, connection.screen().root_depth);
  xcb_change_window_attributes(connection.get(), connection.root(), XCB_CW_BACK_PIXMAP, &pixmap);
  xcb_clear_area(connection.get(), 0, connection.root(), 0, 0, 0, 0);
  connection.setNumbers(connection.root(), "_XROOTPMAP_ID", "PIXMAP", {pixmap});
  connection.setNumbers(connection.root(), "ESETROOT_PMAP_ID", "PIXMAP", {pixmap});
  connection.roundTrip();
}

}  // namespace tessaspaces::demo
