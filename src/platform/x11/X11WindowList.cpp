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
    WindowInfo info;
    info.layer = record.layer;
    info.ownerPid = record.pid;
    info.number = record.window;
    info.name = record.title;
    info.bounds = record.bounds;
    windows.push_back(std::move(info));
  }
  if (onScreen) putActiveFirst(windows, reader_.root(RootDetail::windows)->activeWindow);
  return windows;
}

}  // namespace tessaspaces
