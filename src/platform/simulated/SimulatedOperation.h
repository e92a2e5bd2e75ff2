#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "platform/Dispatch.h"
#include "platform/WindowServer.h"

namespace tessaspaces {

/// What the program can ask of the simulated platform: the names in the call log, and where faults strike.
enum class Operation {
  mainConnectionID,
  copyManagedDisplaySpaces,
  managedDisplayGetCurrentSpace,
  managedDisplaySetCurrentSpace,
  copyWindowsOnSpace,
  copySpacesForWindows,
  moveWindowsToManagedSpace,
  addWindowsToSpaces,
  removeWindowsFromSpaces,
  spaceSetCompatID,
  setWindowListWorkspace,
  bridgedShowSpaces,
  bridgedSetCurrentSpace,
  bridgedHideSpaces,
  bridgedMoveWindows,
  addSpace,
  removeSpace,
  beginRead,
  windowManagerName,
  carriesHeldWindows,
  setDesktopLayout,
  copyWindowInfo,
  screens,
  frontmost,
  running,
  runningWithBundleIdentifier,
  icon,
  activate,
  registerHotKey,
  unregisterHotKey,
  createEvent,
  recreateEvent,
  postEvent,
  swipe,
  setLoginItem,
  requestPermission,
  findWindow,
  windowFrame,
  windowTitle,
  windowTitleBar,
  windowIsAt,
  raiseWindow,
  placeWindow,
  closeWindow,
  mouseLocation,
  heldInput,
  moveMouse,
  pressMouse,
  releaseMouse,
  beginCapture,
  previews,
  wallpaper,
  screenContent,
};

/// The enumerator's own name.
[[nodiscard]] std::string_view operationName(Operation operation);

/// What goes wrong on demand. Nothing does by default.
struct SimulatedFaults {
  /// Queries that get no answer: absent, 0, or an empty list, whatever the operation has for that.
  std::set<Operation> unanswered;
  /// Operations that this system does not offer: performBridged (`bridged...`) and the mouse actions return false.
  std::set<Operation> unavailable;
  /// Requests that are accepted and then have no effect (switches, moves, activation, closing, the mouse).
  std::set<Operation> ignored;
  /// Requests whose effect comes later: switches, moves, activation, swipes.
  std::map<Operation, Duration> delayed;
  /// Switches that end on another space than the one asked for.
  std::map<Operation, SpaceID> landsOn;
  /// The system drags a display back to a space some time after a swipe has arrived there, so many times. A swipe
  /// that comes before that has happened brings no other.
  struct Yank {
    SpaceID space = 0;
    Duration after{};
    int times = 0;
  };
  Yank yank;
  /// Why launch at login cannot be changed; absent: it can.
  std::optional<std::string> loginItemFailure;

  /// Makes all bridged operations unavailable.
  void refuseBridged();
  /// Ignores the first `count` of the four ways to move a window, in the order in which the program tries
  /// them: bridged, moveWindowsToManagedSpace, the compatibility id, add + remove. 4 ignores them all.
  void ignoreMoveMethods(int count);
};

}  // namespace tessaspaces
