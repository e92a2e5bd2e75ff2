#pragma once

#include "grid/packing/Arrangement.h"

namespace tessaspaces::packing {

/// Moves boxes that stand apart in the room towards their wishes, as far as order and room permit: along one axis
/// while the other stands still, then the other way round, twice. Boxes never pass through one another and stay
/// in the room. Where there is room left, up to `air` more is kept between neighbours and to the edges.
void relax(const Task& task, double air, Places& places);

}  // namespace tessaspaces::packing
