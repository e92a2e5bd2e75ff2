#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "base/Signal.h"

namespace tessaspaces {

/// Number of a display, stable across restarts and re-plugging as far as the platform knows it.
using DisplayID = std::uint32_t;

/// One screen of the platform. Frames have their origin at the bottom left of the primary screen, y
/// upwards; ScreenGeometry::flipped turns them into window coordinates.
struct Screen {
  std::optional<DisplayID> displayID;
  /// Identifier text, equal to the ManagedDisplay's; absent when the platform can form none.
  std::optional<std::string> uuid;
  Rect frame;
  /// The frame without panels and docks.
  Rect visibleFrame;
  /// Device pixels per point.
  double scale = 1;
  std::string name;
  bool builtIn = false;
  bool inMirrorSet = false;
  /// The display that this one mirrors; 0 when it mirrors none (it may still be mirrored by others).
  DisplayID mirrors = 0;
};
using ScreenRef = std::shared_ptr<const Screen>;

/// The screens and the pointer. Any thread; the signal is emitted on the main thread.
class Screens {
 public:
  virtual ~Screens() = default;
  /// In the system's order: the first is the one with the menu bar (the RandR primary on X11).
  virtual std::vector<ScreenRef> screens() = 0;
  /// The screen with the keyboard focus, else the first; null when there are no screens.
  virtual ScreenRef mainScreen() = 0;
  /// Bottom-left origin, like the frames.
  virtual Point pointer() = 0;

  /// Screens came, went, or changed their parameters.
  Signal<> changed;
};

}  // namespace tessaspaces
