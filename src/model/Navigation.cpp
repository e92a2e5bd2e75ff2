#include "model/Navigation.h"

#include <algorithm>
#include <array>

#include "settings/Settings.h"

namespace tessaspaces {
namespace {

constexpr std::array<std::string_view, 4> directionNames{"left", "right", "up", "down"};

}  // namespace

std::string_view name(GridDirection direction) {
  return directionNames[static_cast<std::size_t>(direction)];
}

std::optional<GridDirection> directionNamed(std::string_view name) {
  const auto* found = std::find(directionNames.begin(), directionNames.end(), name);
  if (found == directionNames.end()) return std::nullopt;
  return static_cast<GridDirection>(found - directionNames.begin());
}

namespace Spaces {
namespace {

using Index = std::int64_t;

std::optional<Index> horizontalNeighbor(Index index, bool right, Index count, Index columns, bool circulate,
                                        CirculationJoin join) {
  const Index rowStart = index / columns * columns;
  // The last row may be short. Written without rowStart + columns, which a huge column count overflows.
  const Index rowEnd = count - rowStart <= columns ? count - 1 : rowStart + columns - 1;
  const Index target = right ? index + 1 : index - 1;
  if (rowStart <= target && target <= rowEnd) return target;
  if (!circulate) return std::nullopt;
  if (join == CirculationJoin::sameRow) return right ? rowStart : rowEnd;
  return right ? (index + 1) % count : (index - 1 + count) % count;
}

std::optional<Index> verticalNeighbor(Index index, bool down, Index count, Index columns, bool wrap) {
  const Index column = index % columns;
  if (down) {
    if (columns < count - index) return index + columns;
    return wrap ? std::optional(column) : std::nullopt;
  }
  if (index >= columns) return index - columns;
  if (!wrap) return std::nullopt;
  const Index lastRow = (count - 1) / columns;
  const Index lowest = lastRow * columns + column;
  if (lowest < count) return lowest;
  // The short last row does not reach this column: the row above it does.
  const Index above = lowest - columns;
  return above < 0 ? std::nullopt : std::optional(above);
}

}  // namespace

std::optional<Index> neighbor(Index index, GridDirection direction, Index count, Index columns, bool circulate,
                              bool vertically, CirculationJoin join) {
  if (count <= 0 || columns <= 0 || index < 0 || index >= count) return std::nullopt;
  switch (direction) {
    case GridDirection::left: return horizontalNeighbor(index, false, count, columns, circulate, join);
    case GridDirection::right: return horizontalNeighbor(index, true, count, columns, circulate, join);
    case GridDirection::up: return verticalNeighbor(index, false, count, columns, circulate && vertically);
    case GridDirection::down: return verticalNeighbor(index, true, count, columns, circulate && vertically);
  }
  return std::nullopt;
}

std::optional<Index> neighbor(Index index, GridDirection direction, Index count, Index columns) {
  const bool circulate = Settings::circulationEnabled();
  const bool vertically = Settings::circulateVertically();
  return neighbor(index, direction, count, columns, circulate, vertically, Settings::circulationJoin());
}

}  // namespace Spaces
}  // namespace tessaspaces
