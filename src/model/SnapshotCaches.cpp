#include "model/SnapshotCaches.h"

#include "platform/Platform.h"

namespace tessaspaces::Spaces {

SnapshotCaches& caches() {
  static SnapshotCaches instance;
  return instance;
}

ImageRef SnapshotCaches::thumbnail(WindowID window) {
  const std::scoped_lock held(lock);
  const auto found = thumbnailCache.find(window);
  return found == thumbnailCache.end() ? nullptr : found->second;
}

ImageRef SnapshotCaches::icon(std::int32_t pid) {
  {
    const std::scoped_lock held(lock);
    if (const auto found = iconCache.find(pid); found != iconCache.end()) return found->second;
  }
  auto icon = platform().applications().icon(pid);
  if (icon) {
    const std::scoped_lock held(lock);
    iconCache[pid] = icon;
  }
  return icon;
}

void SnapshotCaches::prune(const std::set<WindowID>& windows, const std::set<std::int32_t>& pids) {
  const std::scoped_lock held(lock);
  std::erase_if(thumbnailCache, [&](const auto& entry) { return !windows.contains(entry.first); });
  std::erase_if(iconCache, [&](const auto& entry) { return !pids.contains(entry.first); });
}

}  // namespace tessaspaces::Spaces
