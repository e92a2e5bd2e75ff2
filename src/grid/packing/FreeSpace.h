#pragma once

#include <span>

#include "grid/packing/Arrangement.h"

namespace tessaspaces::packing {

enum class Fit {
  /// As near to the wish as the free space allows. Keeps the picture best, but leaves gaps that are no use.
  anywhere,
  /// Only into corners of the free space, the nearest one: tighter, and still roughly where it was.
  corners,
};

/// Puts down one box after the other, in the given order (every box once), each in the free space that is left where
/// it is nearest to its wish. Absent when one finds no place. That a task fails does not mean that every larger one
/// does.
std::optional<Places> placeInFreeSpace(const Task& task, Fit fit, std::span<const std::size_t> order);

}  // namespace tessaspaces::packing
