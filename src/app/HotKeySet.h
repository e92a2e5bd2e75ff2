#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "app/AppParts.h"
#include "base/KeyCombo.h"
#include "settings/Enums.h"

namespace tessaspaces {

/// Which hot keys there are: the three groups that share their modifiers, and those of the overview grid.
namespace HotKeySet {

/// The keys of a group under these modifiers, in the order of registration; none for 0.
[[nodiscard]] std::vector<KeyCombo> combos(HotkeyGroup group, std::uint32_t modifiers);

/// The group that a registration's label belongs to; absent for the overview's keys.
[[nodiscard]] std::optional<HotkeyGroup> groupOf(std::string_view label);

/// Gives the registered set back, registers the one that the settings ask for, and logs what it is. The
/// grid's own keys are left out while there is no grid. The grid must outlive the registrations.
void registerAll(OverviewGrid* grid);

/// Opens the grid on `screen`, or closes it when it is open.
void toggle(OverviewGrid& grid, const ScreenRef& screen);

}  // namespace HotKeySet
}  // namespace tessaspaces
