#pragma once

#include <span>

#include "base/Geometry.h"

namespace tessaspaces::test {

/// The largest scale at which rows, columns or equal cells filled in list order hold the windows: what the packing
/// must never stay behind. Infinite with no windows. Written apart from it and in another way: each strategy is tried
/// with every width of a row that can make a difference.
double bestSimpleScale(Size room, std::span<const Rect> windows);

}  // namespace tessaspaces::test
