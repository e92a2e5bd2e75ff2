#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Geometry.h"
#include "platform/Applications.h"
#include "platform/Screens.h"
#include "platform/WindowList.h"
#include "platform/WindowServer.h"

namespace tessaspaces {

/// One space. `reported` is what the program gets to see: a test may blank its fields; `id` stays true.
struct SimulatedSpace {
  SpaceID id = 0;
  ManagedSpace reported;
};

/// One display. Its name is its identifier text too.
struct SimulatedDisplay {
  std::string name;
  DisplayID number = 0;
  /// In points, origin at the top left of the first display, y downwards.
  Rect bounds;
  /// What panels and docks leave free, same coordinates.
  Rect visibleBounds;
  double scale = 1;
  bool builtIn = false;
  /// Number of the display that this one mirrors; 0 for none.
  DisplayID mirrors = 0;
  std::vector<SimulatedSpace> spaces;
  SpaceID current = 0;

  /// What of this the program gets to see.
  bool screenHasNumber = true;
  bool screenHasIdentifier = true;
  bool reportsIdentifier = true;
  bool reportsCurrentSpace = true;
  bool reportsSpaces = true;

  [[nodiscard]] bool has(SpaceID space) const;
};

/// One window. `reported` is its entry in the window list: a test may blank its fields; `id` and `pid` stay true.
struct SimulatedWindow {
  WindowID id = 0;
  std::int32_t pid = 0;
  WindowInfo reported;
  std::vector<SpaceID> spaces;
  /// On every space, whatever `spaces` says.
  bool sticky = false;
  /// A wallpaper or the icons on it: left out of the on-screen list.
  bool desktopElement = false;

  [[nodiscard]] bool isOn(SpaceID space) const;
};

struct SimulatedApplication {
  ApplicationInfo info;
  ImageRef icon;
};

/// A press on a title bar that has not been let go yet.
struct SimulatedDrag {
  WindowID window = 0;
  /// Where the pointer was at the press, bottom-left origin.
  Point from;
  /// The window's top left then; absent until the pointer has moved far enough for a drag.
  std::optional<Point> start;
};

/// All that the window server knows: a plain value.
struct WorldState {
  /// Absent when no window manager runs.
  std::optional<std::string> windowManager = "simulated";
  /// The first is the primary one.
  std::vector<SimulatedDisplay> displays;
  /// Front to back.
  std::vector<SimulatedWindow> windows;
  std::vector<SimulatedApplication> applications;
  std::optional<std::int32_t> frontmost;
  std::optional<WindowID> focused;
  /// Bottom-left origin.
  Point pointer;
  /// The program holds the first mouse button.
  bool mousePressed = false;
  /// What the user's own hands hold.
  bool userHoldsButton = false;
  bool userHoldsModifier = false;
  std::optional<SimulatedDrag> drag;
  /// A window that is being dragged comes along when another space is shown.
  bool carriesDraggedWindow = true;
  std::map<std::int32_t, SpaceID> compatibilityIDs;

  // The numbers that the next ones get; windows count from 101, so that no test mistakes one for a space.
  SpaceID nextSpace = 1;
  WindowID nextWindow = 101;
  /// The number that each display has, and keeps when it is plugged in again.
  std::map<std::string, DisplayID, std::less<>> displayNumbers;

  // Null when there is none.
  [[nodiscard]] SimulatedDisplay* display(std::string_view name);
  [[nodiscard]] const SimulatedDisplay* display(std::string_view name) const;
  [[nodiscard]] SimulatedDisplay* displayOf(SpaceID space);
  [[nodiscard]] const SimulatedDisplay* displayOf(SpaceID space) const;
  [[nodiscard]] SimulatedSpace* space(SpaceID id);
  [[nodiscard]] const SimulatedSpace* space(SpaceID id) const;
  [[nodiscard]] SimulatedWindow* window(WindowID id);
  [[nodiscard]] const SimulatedWindow* window(WindowID id) const;
  [[nodiscard]] const SimulatedApplication* application(std::int32_t pid) const;

  /// The window is on a space that its display shows now.
  [[nodiscard]] bool isVisible(const SimulatedWindow& window) const;
  /// The display on which the window is: by its space, a sticky one by where it lies. Null when there is none.
  [[nodiscard]] const SimulatedDisplay* displayOf(const SimulatedWindow& window) const;
};

}  // namespace tessaspaces
