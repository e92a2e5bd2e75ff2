#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/WindowServer.h"

/// The program's only door to the window server's desktop interface. Every operation asks the platform's
/// window server at each call; what absence and failure mean is said there. Any thread.
namespace tessaspaces::SLS {

/// The number of this process's connection to the window server; asked for once.
std::int32_t cid();

std::optional<std::vector<ManagedDisplay>> copyManagedDisplaySpaces();
SpaceID managedDisplayGetCurrentSpace(std::string_view display);
void managedDisplaySetCurrentSpace(std::string_view display, SpaceID space);
std::optional<std::vector<WindowID>> copyWindowsOnSpace(SpaceID space);
std::optional<std::vector<SpaceID>> copySpacesForWindows(int mask, std::span<const WindowID> windows);
void moveWindowsToManagedSpace(std::span<const WindowID> windows, SpaceID space);
void addWindowsToSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces);
void removeWindowsFromSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces);
std::int32_t spaceSetCompatID(SpaceID space, std::int32_t compatID);
std::int32_t setWindowListWorkspace(std::span<const WindowID> windows, std::int32_t compatID);

/// Whether a window held by its title bar comes along to the next space; false where it is known to stay behind.
bool carriesHeldWindows();

/// Hands the move of the windows to the window server; false when it does not offer the operation. True
/// does not mean that the windows have arrived.
bool bridgedMoveWindows(std::span<const WindowID> windows, SpaceID space);

/// Shows `to`, makes it current on the display, hides the spaces in `hiding` (also when there are none).
/// Stops at the first of the three that the window server does not take and does not undo the ones before;
/// true only when all three were handed over, which does not mean that the display has arrived.
bool bridgedSwitchSpace(std::string_view display, SpaceID to, std::span<const SpaceID> hiding);

}  // namespace tessaspaces::SLS
