#pragma once

#include <span>

#include "base/Geometry.h"

namespace tessaspaces {

/// Whether any two of the rectangles share an area, as Rect::intersects says; empty ones never do.
/// Time grows with n log n.
bool hasOverlap(std::span<const Rect> rects);

}  // namespace tessaspaces
