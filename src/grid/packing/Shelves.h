#pragma once

#include <span>

#include "grid/packing/Arrangement.h"

namespace tessaspaces::packing {

/// Puts the boxes into rows (`horizontal`) or columns (`vertical`). `order` names every box once; each row takes
/// a run of it, and the cuts between the runs are those that need the least height of all. So the result is absent
/// only when no way of cutting fits, and what fits at one size of the boxes fits at every smaller one.
///
/// Which row stands above which, and who stands left in a row, follows the wishes and not the order, for the room
/// that is needed is the same.
std::optional<Places> placeInShelves(const Task& task, Axis axis, std::span<const std::size_t> order);

}  // namespace tessaspaces::packing
