#pragma once

#include <cstdint>
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

/// One window. `reported` is its entry in the window list: a test may blank its fields; `id` stays true.
struct SimulatedWindow {
  WindowID id = 0;
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

/// All that the window server knows: a plain value.
struct WorldState {
  /// The first is the primary one.
  std::vector<SimulatedDisplay> displays;
  /// Front to back.
  std::vector<SimulatedWindow> windows;
  std::vector<SimulatedApplication> applications;
  std::optional<std::int32_t> frontmost;
  std::optional<WindowID> focused;
  /// Bottom-left origin.
  Point pointer;

  // Null when there is none.
  [[nodiscard]] SimulatedDisplay* display(std::string_view name);
  [[nodiscard]] const SimulatedDisplay* display(std::string_view name) const;
  [[nodiscard]] SimulatedDisplay* displayOf(SpaceID space);
  [[nodiscard]] const SimulatedDisplay* displayOf(SpaceID space) const;
  [[nodiscard]] SimulatedSpace* space(SpaceID id);
  [[nodiscard]] SimulatedWindow* window(WindowID id);
  [[nodiscard]] const SimulatedWindow* window(WindowID id) const;
  [[nodiscard]] const SimulatedApplication* application(std::int32_t pid) const;

  /// The window is on a space that its display shows now.
  [[nodiscard]] bool isVisible(const SimulatedWindow& window) const;
};

}  // namespace tessaspaces
