#pragma once

#include <functional>

#include "grid/packing/Arrangement.h"

namespace tessaspaces::packing {

/// A way to arrange the same windows at one scale or another: the task has as many boxes as the one that the strategy
/// was made for, in the same order, with the same proportions among them. Absent when it does not succeed.
/// Stands on its own: nothing that it was made from needs to outlive it.
using Strategy = std::function<std::optional<Places>(const Task&)>;

/// Rows and columns in list order. No other way to fill rows, columns or equal cells in list order reaches a larger
/// scale than the better of the two. Whichever succeeds at one scale does at every smaller one.
std::vector<Strategy> simpleStrategies(const Task& windows);

/// Those that keep the picture: `windows` holds the natural extents, and in the wishes the natural centres. The more
/// windows there are, the fewer strategies, for each takes longer then.
std::vector<Strategy> faithfulStrategies(const Task& windows);

}  // namespace tessaspaces::packing
