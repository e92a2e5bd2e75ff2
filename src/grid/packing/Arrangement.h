#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "base/Geometry.h"

/// The parts of the packing. All coordinates have their origin at the top left of the room; nothing here has a
/// state, and every result depends on its arguments alone. Internal to the grid.
namespace tessaspaces::packing {

/// Boxes that are to stand in a room without touching another's inside. The air around a window belongs to its box.
struct Task {
  Size room;
  std::vector<Size> boxes;
  /// Where the centre of each box would like to be, entry for entry; anywhere.
  std::vector<Point> wishes;
};

/// The top left corner of each box, entry for entry.
using Places = std::vector<Point>;

enum class Axis { horizontal, vertical };

/// Mirrored at the diagonal: what holds for rows then holds for columns.
inline Point transposed(Point p) {
  return {p.y, p.x};
}
inline Size transposed(Size s) {
  return {s.height, s.width};
}
Task transposed(const Task& task);
Places transposed(const Places& places);

}  // namespace tessaspaces::packing
