#pragma once

#include <vector>

#include "base/Geometry.h"
#include "platform/x11/CaptureLink.h"

namespace tessaspaces {

struct UnlistedWindow {
  xcb_window_t window = XCB_NONE;
  /// In pixels of the root window, borders included.
  Rect bounds;
};

/// The children of the root on screen that keep out of the window manager's hands (override-redirect): menus, tool
/// tips, notifications, lockers. Many frames of window managers are of the same kind and among them. Specks smaller
/// than 8 by 8 are left out: they are there for other purposes than to be seen. Two round trips. Main thread.
[[nodiscard]] std::vector<UnlistedWindow> overridingWindows(CaptureLink& link);

}  // namespace tessaspaces
