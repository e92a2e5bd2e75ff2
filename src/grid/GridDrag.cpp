#include "grid/GridDrag.h"

#include <cmath>

namespace tessaspaces {

bool GridDrag::isMeant(Point pressed, Point now) {
  return std::hypot(now.x - pressed.x, now.y - pressed.y) > threshold;
}

GridDrag::GridDrag(SpaceWindow window, SpaceID fromSpace, const Rect& preview, Point grip)
    : window_(std::move(window)),
      fromSpace_(fromSpace),
      size_{preview.width, preview.height},
      offset_{grip.x - preview.x, grip.y - preview.y},
      pointer_(grip) {}

Rect GridDrag::carried() const {
  const auto corner = topLeft();
  return {corner.x, corner.y, size_.width, size_.height};
}

Point GridDrag::topLeft() const {
  return {pointer_.x - offset_.x, pointer_.y - offset_.y};
}

}  // namespace tessaspaces
