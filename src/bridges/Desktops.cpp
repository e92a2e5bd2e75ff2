#include "bridges/Desktops.h"

#include "settings/L10n.h"
#include "settings/Settings.h"

namespace tessaspaces {

std::string DesktopInfo::nicknameKey() const {
  return spaceUUID.empty() ? "space-id-" + std::to_string(spaceID) : spaceUUID;
}

std::string DesktopInfo::label(int index) const {
  if (auto nickname = Settings::desktopNickname(nicknameKey())) return *nickname;
  if (!name.empty()) return name;
  return L10n::t("grid.desktopFallbackName", std::to_string(index + 1));
}

}  // namespace tessaspaces
