#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/KeyCombo.h"
#include "settings/Enums.h"

namespace tessaspaces {

/// Which of the wished-for hot keys another program has, and what could be taken instead. Main thread.
namespace HotKeyClashes {

/// Keys that were refused in the last registration.
struct Refused {
  std::vector<KeyCombo> taken;   // another program has them
  std::vector<KeyCombo> absent;  // this keyboard does not

  [[nodiscard]] bool none() const { return taken.empty() && absent.empty(); }
};

struct GroupReport {
  HotkeyGroup group = HotkeyGroup::changeSpace;
  /// What the settings ask for; 0: the group is off.
  std::uint32_t modifiers = 0;
  Refused refused;
};

/// One report for each group, in their order.
[[nodiscard]] std::vector<GroupReport> reports();
/// Refused keys that belong to no group.
[[nodiscard]] Refused others();
[[nodiscard]] bool any();
/// Whether another program has one of the keys.
[[nodiscard]] bool anyTaken();

/// Whether there are refused keys, and not just those that the user has left so.
[[nodiscard]] bool anyNew();
/// The user leaves the refused keys as they are: the same ones are no news any more, in later runs neither.
void accept();

/// The other group that uses these modifiers with the same keys, so that `group` cannot have them.
[[nodiscard]] std::optional<HotkeyGroup> rival(HotkeyGroup group, std::uint32_t modifiers);

/// The first modifiers, of those that applications leave alone, under which all keys of the group are free.
/// Those that the keyboard lacks do not count. Finds out by taking each key for a moment. Absent when there are none.
[[nodiscard]] std::optional<std::uint32_t> freeModifiers(HotkeyGroup group);

}  // namespace HotKeyClashes
}  // namespace tessaspaces
