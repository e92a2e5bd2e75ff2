#pragma once

#include <span>
#include <vector>

#include "base/Geometry.h"

namespace tessaspaces {

struct Packing {
  /// One for each natural rectangle, in the same order.
  std::vector<Rect> rects;
  /// The scale that all of them have against their natural rectangles.
  double score = 0;
};

/// Spreads the previews of one tile apart until none covers another.
///
/// `natural` are the rectangles where the windows really are, in the coordinates of `content` and usually inside it.
/// The result lies inside `content`, no two rectangles intersect, and each has the extent of its natural rectangle
/// times `score`, which is at most `preScale`. Empty natural rectangles come back all-zero and take no room. When
/// there is no room at all (an empty `content`, a `preScale` that is not positive) all are zero, and so is the score.
///
/// The windows stay about where they were: left of those that they were left of, above those that they were above.
/// For that a somewhat smaller scale is accepted, but never a smaller one than rows, columns or equal cells in list
/// order would reach (to one part in a million). Any thread.
///
/// Takes well below a millisecond for a dozen windows and grows a little faster than their number.
Packing packExploded(const Rect& content, std::span<const Rect> natural, double preScale);

}  // namespace tessaspaces
