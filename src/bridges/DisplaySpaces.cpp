#include "bridges/DisplaySpaces.h"

#include <algorithm>

#include "bridges/SkyLightBridge.h"

namespace tessaspaces::Spaces {

std::vector<SpaceID> allSpaceIDs(const std::string& displayUUID) {
  std::vector<SpaceID> all;
  const auto display = managedDisplay(displayUUID);
  if (!display || !display->spaces) return all;
  for (const auto& space : *display->spaces) {
    if (const auto id = idOf(space)) all.push_back(*id);
  }
  return all;
}

SpaceID currentSpaceID(const std::string& displayUUID) {
  return SLS::managedDisplayGetCurrentSpace(displayUUID);
}

std::optional<ManagedDisplay> managedDisplay(const std::string& displayUUID) {
  auto displays = SLS::copyManagedDisplaySpaces();
  if (!displays) return std::nullopt;
  const auto match = std::find_if(displays->begin(), displays->end(),
                                  [&](const auto& display) { return display.displayIdentifier == displayUUID; });
  if (match == displays->end()) return std::nullopt;
  return std::move(*match);
}

std::optional<SpaceID> idOf(const ManagedSpace& space) {
  return space.id64 ? space.id64 : space.managedSpaceID;
}

}  // namespace tessaspaces::Spaces
