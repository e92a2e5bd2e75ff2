#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/KeyCombo.h"
#include "settings/Enums.h"

namespace tessaspaces {

/// Which of the wished-for hot keys another program has, and what could be taken instead. Main thread.
namespace HotKeyClashes {

struct GroupReport {
  HotkeyGroup group = HotkeyGroup::changeSpace;
  /// What the settings ask for; 0: the group is off.
  std::uint32_t modifiers = 0;
  /// Those of its keys that were refused in the last registration.
  std::vector<KeyCombo> taken;
};

/// One report for each group, in their order.
[[nodiscard]] std::vector<GroupReport> reports();
/// Refused keys that belong to no group.
[[nodiscard]] std::vector<KeyCombo> otherTaken();
[[nodiscard]] bool any();

/// The other group that uses these modifiers with the same keys, so that `group` cannot have them.
[[nodiscard]] std::optional<HotkeyGroup> rival(HotkeyGroup group, std::uint32_t modifiers);

/// The first modifiers, of those that applications leave alone, under which all keys of the group are free.
/// Finds out by taking each key for a moment. Absent when there are none.
[[nodiscard]] std::optional<std::uint32_t> freeModifiers(HotkeyGroup group);

}  // namespace HotKeyClashes
}  // namespace tessaspaces
