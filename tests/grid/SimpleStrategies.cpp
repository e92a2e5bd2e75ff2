#include "grid/SimpleStrategies.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace tessaspaces::test {
namespace {

// Fills rows one after the other, each up to `width` at natural size, and fits the whole into the room.
double scaleOfRows(Size room, std::span<const Size> windows, double width) {
  double widest = 0;
  double height = 0;
  double rowWidth = 0;
  double rowHeight = 0;
  for (const auto& window : windows) {
    if (rowWidth > 0 && rowWidth + window.width > width) {
      height += rowHeight;
      rowWidth = rowHeight = 0;
    }
    rowWidth += window.width;
    rowHeight = std::max(rowHeight, window.height);
    widest = std::max(widest, rowWidth);
  }
  return std::min(room.width / widest, room.height / (height + rowHeight));
}

double bestRows(Size room, std::span<const Size> windows) {
  std::vector<double> widths;
  for (std::size_t first = 0; first < windows.size(); ++first) {
    double width = 0;
    for (std::size_t last = first; last < windows.size(); ++last) widths.push_back(width += windows[last].width);
  }
  // Of very many, enough to come close.
  const std::size_t step = 1 + widths.size() / 2000;
  double best = 0;
  for (std::size_t i = 0; i < widths.size(); i += step) best = std::max(best, scaleOfRows(room, windows, widths[i]));
  return best;
}

double bestCells(Size room, std::span<const Size> windows) {
  double widest = 0;
  double highest = 0;
  for (const auto& window : windows) {
    widest = std::max(widest, window.width);
    highest = std::max(highest, window.height);
  }
  double best = 0;
  for (std::size_t columns = 1; columns <= windows.size(); ++columns) {
    const auto rows = (windows.size() + columns - 1) / columns;
    best = std::max(best, std::min(room.width / static_cast<double>(columns) / widest,
                                   room.height / static_cast<double>(rows) / highest));
  }
  return best;
}

}  // namespace

double bestSimpleScale(Size room, std::span<const Rect> windows) {
  std::vector<Size> sizes;
  std::vector<Size> turned;
  for (const auto& window : windows) {
    if (window.isEmpty()) continue;
    sizes.push_back({window.width, window.height});
    turned.push_back({window.height, window.width});
  }
  if (sizes.empty()) return std::numeric_limits<double>::infinity();
  return std::max({bestRows(room, sizes), bestRows({room.height, room.width}, turned), bestCells(room, sizes)});
}

}  // namespace tessaspaces::test
