#include "bridges/DesktopRenumbering.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <variant>

#include "bridges/Desktops.h"
#include "bridges/DisplaySpaces.h"
#include "settings/ConfigStore.h"
#include "settings/Settings.h"
#include "settings/SettingsTable.h"

namespace tessaspaces::Spaces {
namespace {

std::string keyOf(SpaceID space) {
  return DesktopInfo(space, {}).nicknameKey();
}

void moveNicknames(const std::vector<SpaceID>& from) {
  for (auto next = from.begin(); next != from.end(); ++next) {
    const auto key = keyOf(*next);
    const auto name = std::next(next) == from.end() ? std::nullopt : Settings::desktopNickname(keyOf(*std::next(next)));
    // A name that stays as it is need not be written.
    if (name != Settings::desktopNickname(key)) Settings::setDesktopNickname(name, key);
  }
}

/// `keys` has the new key for the old one; none for a desktop that is gone.
void moveAssignments(const std::map<std::string, std::optional<std::string>>& keys) {
  const auto prefix = SettingsTable::entry(SettingsTable::Setting::appAssignment).key;
  for (const auto& stored : ConfigStore::keys()) {
    if (!stored.starts_with(prefix)) continue;
    const auto application = std::string_view(stored).substr(prefix.size());
    const auto assignment = Settings::appAssignment(application);
    const auto* desktop = assignment ? std::get_if<DesktopIdentifier>(&*assignment) : nullptr;
    const auto change = desktop != nullptr ? keys.find(desktop->value) : keys.end();
    if (change != keys.end()) Settings::setAppAssignment(change->second, application);
  }
}

}  // namespace

bool areNumbers(const std::vector<ManagedSpace>& desktops) {
  SpaceID number = 0;
  return std::all_of(desktops.begin(), desktops.end(), [&](const ManagedSpace& space) {
    return space.uuid.value_or("").empty() && idOf(space) == ++number;
  });
}

void renumberNames(const std::vector<SpaceID>& before, SpaceID removed) {
  const std::vector<SpaceID> from(std::find(before.begin(), before.end(), removed), before.end());
  if (from.empty()) return;
  moveNicknames(from);
  std::map<std::string, std::optional<std::string>> keys{{keyOf(removed), std::nullopt}};
  for (std::size_t i = 1; i < from.size(); ++i) keys[keyOf(from[i])] = keyOf(from[i - 1]);
  moveAssignments(keys);
}

}  // namespace tessaspaces::Spaces
