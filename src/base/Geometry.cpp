#include "base/Geometry.h"

#include <algorithm>

namespace tessaspaces {

bool Rect::isEmpty() const {
  // Written so that a NaN extent counts as empty too.
  return !(width > 0) || !(height > 0);
}

bool Rect::contains(Point p) const {
  return !isEmpty() && p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
}

bool Rect::intersects(const Rect& other) const {
  return !intersection(other).isEmpty();
}

Rect Rect::intersection(const Rect& other) const {
  if (isEmpty() || other.isEmpty()) return {};
  const double left = std::max(minX(), other.minX());
  const double top = std::max(minY(), other.minY());
  const double right = std::min(maxX(), other.maxX());
  const double bottom = std::min(maxY(), other.maxY());
  if (!(right > left) || !(bottom > top)) return {};
  return {left, top, right - left, bottom - top};
}

Rect Rect::inset(double dx, double dy) const {
  return {x + dx, y + dy, width - 2 * dx, height - 2 * dy};
}

}  // namespace tessaspaces
