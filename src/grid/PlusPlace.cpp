#include "grid/PlusPlace.h"

#include <algorithm>

namespace tessaspaces {
namespace {

constexpr double columnWidth = 44;
/// A column that is narrower is too small a thing to aim at.
constexpr double leastWidth = 36;
constexpr double buttonSide = 28;

}  // namespace

Rect plusPlace(const GridLayout& layout, Size bounds) {
  const int count = static_cast<int>(layout.snapshot().desktops.size());
  const int columns = layout.columns();
  // One more in a full row would need another row, which moves all tiles.
  if (count == 0 || (columns > 0 && count % columns != 0)) {
    if (const auto cell = layout.tileGeometry(count, count + 1); cell && !cell->rect.isEmpty()) return cell->rect;
  }
  if (!layout.tileRects().empty()) {
    const auto& last = layout.tileRects().back();
    const double left = last.maxX() + GridLayout::gap;
    const double room = bounds.width - left;
    if (room >= leastWidth && last.height > 0) return {left, last.y, std::min(columnWidth, room), last.height};
  }
  return {bounds.width - GridLayout::margin - buttonSide,
          layout.menuBarInset() + (GridLayout::headerHeight - buttonSide) / 2, buttonSide, buttonSide};
}

}  // namespace tessaspaces
