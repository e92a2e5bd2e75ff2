#include "grid/GridPlacement.h"

#include <algorithm>
#include <cmath>

namespace tessaspaces {
namespace {

/// A start that keeps the length within [least, most] if it fits, and begins it at `least` if not.
double kept(double start, double length, double least, double most) {
  return std::max(least, std::min(start, most - length));
}

}  // namespace

std::optional<Rect> GridPlacement::frame() const {
  if (image.isEmpty() || screen.isEmpty() || visible.isEmpty() || window.isEmpty()) return std::nullopt;
  const bool fills = window.width >= visible.width && window.height >= visible.height;
  if (fills && !otherScreen) return std::nullopt;
  Rect placed{screen.x + (drop.x - image.x) * screen.width / image.width,
              screen.y + (drop.y - image.y) * screen.height / image.height, window.width, window.height};
  if (otherScreen) {
    placed.width = std::min(placed.width, visible.width);
    placed.height = std::min(placed.height, visible.height);
  }
  placed.x = std::round(kept(placed.x, placed.width, visible.minX(), visible.maxX()));
  placed.y = std::round(kept(placed.y, placed.height, visible.minY(), visible.maxY()));
  const bool there = std::abs(placed.x - window.x) < 1 && std::abs(placed.y - window.y) < 1 &&
                     placed.width == window.width && placed.height == window.height;
  return there ? std::nullopt : std::optional(placed);
}

}  // namespace tessaspaces
