#pragma once

#include "grid/packing/Arrangement.h"

namespace tessaspaces::packing {

/// How much of the picture an arrangement loses: 0 when every box stands where it wished, about 1 when they stand in
/// no relation to their wishes.
double loss(const Task& task, const Places& places);

/// The share of the order that is turned round, 0 to 1: of all pairs, left and right, above and below, each counted
/// with the distance that the two wish for.
double inversions(const Task& task, const Places& places);

}  // namespace tessaspaces::packing
