#pragma once

#include <vector>

#include "platform/WindowServer.h"

/// What the user says of a desktop is stored by its identity. Where that is but its number, it has to move along when a
/// desktop goes and those behind it get other numbers.
namespace tessaspaces::Spaces {

/// Whether the ids of a display's desktops are their numbers, counted from 1, and nothing else tells one from another.
[[nodiscard]] bool areNumbers(const std::vector<ManagedSpace>& desktops);

/// Moves nicknames and the applications assigned to desktops, and drops those of the removed one. `before` are the
/// desktops' ids in order, from before `removed` went.
void renumberNames(const std::vector<SpaceID>& before, SpaceID removed);

}  // namespace tessaspaces::Spaces
