#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "base/Image.h"
#include "platform/Dispatch.h"
#include "platform/WindowServer.h"

/// What the desktop model keeps between two snapshots. Internal to the model.
namespace tessaspaces::Spaces {

struct SnapshotCaches {
  /// Guards every field below. Never held while anything is asked of the platform.
  std::mutex lock;
  /// Display identifier -> nickname key of the desktop last seen current there.
  std::map<std::string, std::string> lastKnownCurrentDesktopKey;
  std::map<WindowID, ImageRef> thumbnailCache;
  std::map<std::int32_t, ImageRef> iconCache;
  /// When to ask again for the icon of an application that had none.
  std::map<std::int32_t, TimePoint> iconlessUntil;

  ImageRef thumbnail(WindowID window);
  /// The application's icon, asked of the platform when it is not known yet; null when it has none. One without is
  /// asked again only after a while: there is a question for each of its windows.
  ImageRef icon(std::int32_t pid);
  /// Keeps only what belongs to these windows and processes.
  void prune(const std::set<WindowID>& windows, const std::set<std::int32_t>& pids);
};

SnapshotCaches& caches();

}  // namespace tessaspaces::Spaces
