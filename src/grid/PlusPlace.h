#pragma once

#include "grid/GridLayout.h"

namespace tessaspaces {

/// Where the place that adds a desktop is, on a panel of that extent that is laid out: the next cell of the rows in
/// use, else a slim column right of the last tile, else, where there is no room for that, a button at the right end of
/// the header.
Rect plusPlace(const GridLayout& layout, Size bounds);

}  // namespace tessaspaces
