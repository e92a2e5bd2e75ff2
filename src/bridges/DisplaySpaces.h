#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/WindowServer.h"

/// What one display has and shows, asked of the window server at each call: all that the ways to switch need of the
/// desktop model. Any thread.
namespace tessaspaces::Spaces {

/// Every space of the display in order, user desktops and others alike; empty when the window server does not know it.
std::vector<SpaceID> allSpaceIDs(const std::string& displayUUID);
/// The space that the display shows now; 0 when unknown.
SpaceID currentSpaceID(const std::string& displayUUID);

/// The display as the window server describes it.
std::optional<ManagedDisplay> managedDisplay(const std::string& displayUUID);
/// The space's number under whichever key it was given.
std::optional<SpaceID> idOf(const ManagedSpace& space);

}  // namespace tessaspaces::Spaces
