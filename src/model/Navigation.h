#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "settings/Enums.h"

namespace tessaspaces {

enum class GridDirection { left, right, up, down };

/// "left", "right", "up", "down": for the log and the command line.
std::string_view name(GridDirection direction);
std::optional<GridDirection> directionNamed(std::string_view name);

namespace Spaces {

/// The desktop next to desktop `index` in a grid that is filled row by row, or none where the grid ends
/// and the switches do not allow wrapping around. Pure.
///
/// - Outside the grid (count or columns not positive, index not below count): none.
/// - Left and right at the end of a row need `circulate`. `sameRow` returns to the other end of that row
///   (of a short last row: its own ends); `nextRow` goes on in reading order, from the last desktop to
///   the first and back.
/// - Up and down beyond the grid need `circulate` and `vertically`; `join` has no say. Down lands on the
///   top row in the same column, also from a full row into the gap below it; up lands on the lowest
///   desktop of the column.
std::optional<std::int64_t> neighbor(std::int64_t index, GridDirection direction, std::int64_t count,
                                     std::int64_t columns, bool circulate, bool vertically, CirculationJoin join);

/// The same with the user's circulation settings, read at each call.
std::optional<std::int64_t> neighbor(std::int64_t index, GridDirection direction, std::int64_t count,
                                     std::int64_t columns);

struct SelfTestResult {
  int cases = 0;
  int failures = 0;
  /// Localised, for display.
  std::string report;
};

/// Runs the built-in table of cases against `neighbor` and logs the outcome.
SelfTestResult runCirculationSelfTest();
/// The report of `runCirculationSelfTest` alone.
std::string selfTestCirculation();

}  // namespace Spaces
}  // namespace tessaspaces
