#include "model/AppAssignments.h"

#include <algorithm>

namespace tessaspaces::Settings {

DesktopRef resolve(const AppAssignment& assignment, const std::vector<DesktopRef>& desktops) {
  if (const auto* identifier = std::get_if<DesktopIdentifier>(&assignment)) {
    const auto match = std::find_if(desktops.begin(), desktops.end(),
                                    [&](const auto& desktop) { return desktop->nicknameKey() == identifier->value; });
    return match == desktops.end() ? nullptr : *match;
  }
  const auto number = std::get<DesktopNumber>(assignment).value;
  if (number < 1 || number > static_cast<long long>(desktops.size())) return nullptr;
  return desktops[static_cast<std::size_t>(number - 1)];
}

}  // namespace tessaspaces::Settings
