#include "model/WindowMapping.h"

#include <set>
#include <unordered_map>

#include "model/Snapshot.h"
#include "model/SnapshotCaches.h"
#include "platform/Platform.h"

namespace tessaspaces::Spaces {

SpaceWindow spaceWindow(const WindowInfo& entry) {
  const WindowBounds bounds = entry.bounds.value_or(WindowBounds{});
  return {entry.number.value_or(0),
          entry.name.value_or(""),
          entry.ownerPid.value_or(0),
          {bounds.x.value_or(0), bounds.y.value_or(0), bounds.width.value_or(0), bounds.height.value_or(0)}};
}

void mapWindows(SpacesSnapshot& snapshot) {
  const auto entries = platform().windowList().copyWindowInfo(WindowListOption::all);
  if (!entries) return;
  const std::int32_t ownPid = platform().processID();

  std::unordered_map<WindowID, SpaceWindow> known;
  for (const auto& entry : *entries) {
    if (entry.layer.value_or(-1) != 0 || entry.ownerPid.value_or(0) == ownPid) continue;
    auto window = spaceWindow(entry);
    known[window.id] = std::move(window);
  }

  for (const auto& desktop : snapshot.desktops) {
    desktop->windows.clear();
    desktop->thumbs.clear();
    for (const WindowID id : ids(desktop->spaceID)) {
      const auto window = known.find(id);
      if (window == known.end()) continue;
      desktop->windows.push_back(window->second);
      desktop->thumbs.push_back(caches().thumbnail(id));
    }
    desktop->icons.assign(desktop->windows.size(), nullptr);
  }

  std::set<WindowID> windows;
  std::set<std::int32_t> pids;
  for (const auto& [id, window] : known) {
    windows.insert(id);
    pids.insert(window.pid);
  }
  caches().prune(windows, pids);
}

void assignIcons(SpacesSnapshot& snapshot) {
  for (const auto& desktop : snapshot.desktops) {
    for (std::size_t i = 0; i < desktop->windows.size(); ++i) {
      desktop->icons[i] = caches().icon(desktop->windows[i].pid);
    }
  }
}

}  // namespace tessaspaces::Spaces
