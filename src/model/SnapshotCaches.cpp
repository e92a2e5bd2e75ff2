#include "model/SnapshotCaches.h"

#include <chrono>

#include "platform/Platform.h"

namespace tessaspaces::Spaces {
namespace {

using namespace std::chrono_literals;

/// An application may set its icon some time after its first window.
constexpr Duration iconlessTime = 10s;

}  // namespace

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
  const auto now = platform().dispatch().now();
  {
    const std::scoped_lock held(lock);
    if (const auto found = iconCache.find(pid); found != iconCache.end()) return found->second;
    if (const auto found = iconlessUntil.find(pid); found != iconlessUntil.end() && now < found->second) return nullptr;
  }
  auto icon = platform().applications().icon(pid);
  const std::scoped_lock held(lock);
  if (icon) {
    iconCache[pid] = icon;
    iconlessUntil.erase(pid);
  } else {
    iconlessUntil[pid] = now + iconlessTime;
  }
  return icon;
}

void SnapshotCaches::prune(const std::set<WindowID>& windows, const std::set<std::int32_t>& pids) {
  const std::scoped_lock held(lock);
  std::erase_if(thumbnailCache, [&](const auto& entry) { return !windows.contains(entry.first); });
  std::erase_if(iconCache, [&](const auto& entry) { return !pids.contains(entry.first); });
  std::erase_if(iconlessUntil, [&](const auto& entry) { return !pids.contains(entry.first); });
}

}  // namespace tessaspaces::Spaces
