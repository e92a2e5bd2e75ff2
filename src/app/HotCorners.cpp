#include "app/HotCorners.h"

#include <utility>

namespace tessaspaces {

std::optional<HotCorner> HotCorners::classify(Point pointer, const Rect& screen) {
  if (!screen.inset(-margin, -margin).contains(pointer)) return std::nullopt;
  const bool left = pointer.x <= screen.minX() + reach;
  const bool right = pointer.x >= screen.maxX() - reach;
  const bool top = pointer.y >= screen.maxY() - reach;
  const bool bottom = pointer.y <= screen.minY() + reach;
  if (left && top) return HotCorner::topLeft;
  if (right && top) return HotCorner::topRight;
  if (left && bottom) return HotCorner::bottomLeft;
  if (right && bottom) return HotCorner::bottomRight;
  return std::nullopt;
}

std::optional<HotCorner> HotCorners::tick(Point pointer, const Rect& screen) {
  const auto inside = classify(pointer, screen);
  const auto before = std::exchange(insideLastTick_, inside);
  if (!std::exchange(known_, true) || inside == before) return std::nullopt;
  return inside;
}

}  // namespace tessaspaces
