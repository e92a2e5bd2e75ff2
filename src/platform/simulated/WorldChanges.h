#pragma once

#include "platform/simulated/WorldState.h"

namespace tessaspaces {

// Which of the platform's signals tell of the way from one state to another.

/// Spaces came, went or were renamed, or a display shows another one.
[[nodiscard]] bool spacesDiffer(const WorldState& before, const WorldState& after);
/// Windows came, went, or are on other spaces; their order does not count.
[[nodiscard]] bool windowsDiffer(const WorldState& before, const WorldState& after);
/// Displays came, went, or changed their parameters.
[[nodiscard]] bool screensDiffer(const WorldState& before, const WorldState& after);

}  // namespace tessaspaces
