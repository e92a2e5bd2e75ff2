#include "bridges/SkyLightBridge.h"

#include "platform/Platform.h"

namespace tessaspaces::SLS {
namespace {

WindowServer& server() {
  return platform().windowServer();
}

}  // namespace

std::int32_t cid() {
  return server().mainConnectionID();
}

std::optional<std::vector<ManagedDisplay>> copyManagedDisplaySpaces() {
  return server().copyManagedDisplaySpaces();
}

SpaceID managedDisplayGetCurrentSpace(std::string_view display) {
  return server().managedDisplayGetCurrentSpace(display);
}

void managedDisplaySetCurrentSpace(std::string_view display, SpaceID space) {
  server().managedDisplaySetCurrentSpace(display, space);
}

std::optional<std::vector<WindowID>> copyWindowsOnSpace(SpaceID space) {
  return server().copyWindowsOnSpace(space);
}

std::optional<std::vector<SpaceID>> copySpacesForWindows(int mask, std::span<const WindowID> windows) {
  return server().copySpacesForWindows(mask, windows);
}

void moveWindowsToManagedSpace(std::span<const WindowID> windows, SpaceID space) {
  server().moveWindowsToManagedSpace(windows, space);
}

void addWindowsToSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) {
  server().addWindowsToSpaces(windows, spaces);
}

void removeWindowsFromSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) {
  server().removeWindowsFromSpaces(windows, spaces);
}

std::int32_t spaceSetCompatID(SpaceID space, std::int32_t compatID) {
  return server().spaceSetCompatID(space, compatID);
}

std::int32_t setWindowListWorkspace(std::span<const WindowID> windows, std::int32_t compatID) {
  return server().setWindowListWorkspace(windows, compatID);
}

bool carriesHeldWindows() {
  return server().carriesHeldWindows();
}

bool bridgedMoveWindows(std::span<const WindowID> windows, SpaceID space) {
  return server().performBridged(MoveWindowsToSpace{{windows.begin(), windows.end()}, space});
}

bool bridgedSwitchSpace(std::string_view display, SpaceID to, std::span<const SpaceID> hiding) {
  return server().performBridged(ShowSpaces{{to}}) &&
         server().performBridged(SetCurrentSpace{std::string(display), to}) &&
         server().performBridged(HideSpaces{{hiding.begin(), hiding.end()}});
}

}  // namespace tessaspaces::SLS
