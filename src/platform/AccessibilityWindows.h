#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/Geometry.h"
#include "platform/WindowServer.h"

namespace tessaspaces {

/// A window of another application, held by what the system offers to assistive programs. Rectangles have their
/// origin at the top left of the primary display, y downwards. Everything is absent, or false, for a window that
/// is gone by now. Any thread.
class AccessibilityWindow {
 public:
  virtual ~AccessibilityWindow() = default;
  /// With its decorations, as the window list has it.
  virtual std::optional<Rect> frame() = 0;
  virtual std::optional<std::string> title() = 0;
  /// The strip above its content by which a user drags the window, buttons included; absent when it has none.
  virtual std::optional<Rect> titleBar() = 0;
  /// Whether a click there would meet this window or its decorations: it is on screen, and nothing lies over it.
  virtual bool isAt(Point point) = 0;
  /// Brings it in front of the other windows of its desktop and gives it the focus; where its desktop is not shown
  /// the user may be taken there. True: asked for.
  virtual bool raise() = 0;
  /// Moves and sizes it so that its frame lies there; a maximised or full-screen window gives that up. Applications may
  /// keep to sizes of their own, tiling window managers to their layout. True: asked for.
  virtual bool place(const Rect& frame) = 0;
  /// Asks it to close, as its close button would: it may put a question to the user first, or stay. True: asked for.
  virtual bool close() = 0;
};

/// The windows of other applications, to be looked at and acted on one by one. Any thread.
class AccessibilityWindows {
 public:
  virtual ~AccessibilityWindows() = default;
  /// Null when there is no such window of that process, or the user has not permitted to look (Permissions).
  virtual std::unique_ptr<AccessibilityWindow> find(std::int32_t pid, WindowID window) = 0;
};

}  // namespace tessaspaces
