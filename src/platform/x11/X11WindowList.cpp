#include "platform/x11/X11WindowList.h"

#include <algorithm>

namespace tessaspaces {
namespace {

void putActiveFirst(std::vector<WindowInfo>& windows, xcb_window_t active) {
  const auto found =
      std::find_if(windows.begin(), windows.end(), [&](const WindowInfo& window) { return window.number == active; });
  if (found == windows.end() || !found->ownerPid) return;
  const auto first = std::find_if(windows.begin(), found,
                                  [&](const WindowInfo& window) { return window.ownerPid == found->ownerPid; });
  std::rotate(first, found, found + 1);
}

WindowInfo described(const WindowRecord& record) {
  WindowInfo info;
  info.layer = record.layer;
  info.ownerPid = record.pid;
  info.number = record.window;
  info.name = record.title;
  info.bounds = record.bounds;
  info.fullScreen = record.fullScreen;
  return info;
}

}  // namespace

std::optional<std::vector<WindowInfo>> X11WindowList::copyWindowInfo(WindowListOption option) {
  const auto scope = reader_.beginRead();
  const auto records = reader_.windows(WindowDetail::everything);
  const bool onScreen = option == WindowListOption::onScreenWithoutDesktopElements;
  const auto sight = server_.sight();
  std::vector<WindowInfo> windows;
  windows.reserve(records->size());
  for (const auto& record : *records) {
    if (onScreen && (record.layer == layers::desktop || !sight.isVisible(record))) continue;
    windows.push_back(described(record));
  }
  if (onScreen) putActiveFirst(windows, reader_.root(RootDetail::windows)->activeWindow);
  return windows;
}

std::optional<WindowInfo> X11WindowList::frontWindow(std::int32_t ofPid) {
  const auto scope = reader_.beginRead();
  // In the on-screen list the active window stands before all others of its process.
  if (const auto active = reader_.active().window) {
    if (active->pid == ofPid && active->layer == layers::ordinary && server_.sight().isVisible(*active)) {
      return described(*active);
    }
  }
  return WindowList::frontWindow(ofPid);
}

}  // namespace tessaspaces
