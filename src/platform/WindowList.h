#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/WindowServer.h"

namespace tessaspaces {

/// A window's frame, decorations included, in global coordinates with the origin at the top left of the
/// primary display, y downwards. A missing component was not reported.
struct WindowBounds {
  std::optional<double> x;
  std::optional<double> y;
  std::optional<double> width;
  std::optional<double> height;
};

/// One entry of the system's window list; an absent field was not reported.
struct WindowInfo {
  /// 0 is an ordinary application window; docks, menus, notifications and the like have other layers.
  std::optional<int> layer;
  /// As in ApplicationInfo.
  std::optional<std::int32_t> ownerPid;
  std::optional<WindowID> number;
  std::optional<std::string> name;
  std::optional<WindowBounds> bounds;
  /// It covers its display in full screen, while its desktop is shown.
  std::optional<bool> fullScreen;
};

enum class WindowListOption {
  all,                            // windows of every desktop
  onScreenWithoutDesktopElements  // what is visible now, without wallpapers and desktop icons
};

/// The windows that exist, in front-to-back order. Any thread.
class WindowList {
 public:
  virtual ~WindowList() = default;
  /// Absent when the system gives no answer.
  virtual std::optional<std::vector<WindowInfo>> copyWindowInfo(WindowListOption option) = 0;
  /// The first window of the on-screen list that is an ordinary one of this process; absent when it has none there.
  /// A platform that knows it need not look through the whole list.
  virtual std::optional<WindowInfo> frontWindow(std::int32_t ofPid);
};

}  // namespace tessaspaces
