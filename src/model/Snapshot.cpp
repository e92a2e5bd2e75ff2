#include "model/Snapshot.h"

#include <algorithm>
#include <mutex>

#include "bridges/DisplaySpaces.h"
#include "bridges/SkyLightBridge.h"
#include "bridges/YabaiBridge.h"
#include "model/DisplayScreens.h"
#include "model/SnapshotCaches.h"
#include "model/WindowMapping.h"
#include "platform/Platform.h"

namespace tessaspaces::Spaces {
namespace {

/// Selects spaces of every kind when asking for a window's spaces.
constexpr int allSpacesMask = 7;

std::vector<DesktopRef> userDesktops(const ManagedDisplay& display) {
  const std::string displayID = display.displayIdentifier.value_or("");
  const SpaceID current = display.currentSpace ? display.currentSpace->id64.value_or(0) : 0;
  const ScreenRef screen = screenForDisplayUUID(displayID);
  std::vector<DesktopRef> desktops;
  if (!display.spaces) return desktops;
  for (const auto& space : *display.spaces) {
    const auto id = idOf(space);
    if (!id || space.type.value_or(0) != 0) continue;
    auto desktop = std::make_shared<DesktopInfo>(*id, displayID);
    desktop->name = space.name.value_or("");
    desktop->spaceUUID = space.uuid.value_or("");
    desktop->isCurrent = *id == current;
    desktop->screen = screen;
    desktops.push_back(std::move(desktop));
  }
  return desktops;
}

/// Remembers which desktop the display shows; when it shows none (a full-screen space covers it), marks
/// the one the user came from with the application that covers it.
void trackCurrentDesktop(const std::string& displayID, const std::vector<DesktopRef>& desktops) {
  auto& known = caches();
  const auto current =
      std::find_if(desktops.begin(), desktops.end(), [](const auto& desktop) { return desktop->isCurrent; });
  if (current != desktops.end()) {
    const std::scoped_lock held(known.lock);
    known.lastKnownCurrentDesktopKey[displayID] = (*current)->nicknameKey();
    return;
  }
  std::string key;
  {
    const std::scoped_lock held(known.lock);
    const auto remembered = known.lastKnownCurrentDesktopKey.find(displayID);
    if (remembered == known.lastKnownCurrentDesktopKey.end()) return;
    key = remembered->second;
  }
  const auto covered = std::find_if(desktops.begin(), desktops.end(),
                                    [&](const auto& desktop) { return desktop->nicknameKey() == key; });
  if (covered == desktops.end()) return;
  if (const auto front = platform().applications().frontmost()) {
    (*covered)->frontmostFullscreenAppName = front->localizedName;
  }
}

struct ActiveSpaces {
  /// Guards `lastKnownActiveSpaceID`.
  std::mutex activeSpaceLock;
  std::map<std::string, SpaceID> lastKnownActiveSpaceID;
};

ActiveSpaces& activeSpaces() {
  static ActiveSpaces instance;
  return instance;
}

}  // namespace

SpacesSnapshot enumerate(WithWindows withWindows) {
  SpacesSnapshot snapshot;
  const auto reading = platform().windowServer().beginRead();
  const auto displays = SLS::copyManagedDisplaySpaces();
  if (!displays) return snapshot;
  for (const auto& display : *displays) {
    const auto desktops = userDesktops(display);
    trackCurrentDesktop(display.displayIdentifier.value_or(""), desktops);
    snapshot.desktops.insert(snapshot.desktops.end(), desktops.begin(), desktops.end());
  }
  if (withWindows == WithWindows::yes) {
    mapWindows(snapshot);
    assignIcons(snapshot);
  }
  return snapshot;
}

std::vector<WindowID> ids(SpaceID onSpace) {
  return SLS::copyWindowsOnSpace(onSpace).value_or(std::vector<WindowID>{});
}

std::optional<int> currentDesktopIndex(const SpacesSnapshot& snapshot, const std::string& displayUUID) {
  const auto indexOf = [&](SpaceID space) -> std::optional<int> {
    const auto& desktops = snapshot.desktops;
    const auto match =
        std::find_if(desktops.begin(), desktops.end(), [&](const auto& desktop) { return desktop->spaceID == space; });
    return match == desktops.end() ? std::nullopt : std::optional(static_cast<int>(match - desktops.begin()));
  };
  if (askYabaiFirst()) {
    const auto focused = YabaiBridge::focusedSpaceID();
    if (const auto index = focused ? indexOf(*focused) : std::nullopt) return index;
  }
  if (const auto index = indexOf(currentSpaceID(displayUUID))) return index;
  return firstCurrentIndex(snapshot);
}

std::optional<int> firstCurrentIndex(const SpacesSnapshot& snapshot) {
  const auto& desktops = snapshot.desktops;
  const auto match =
      std::find_if(desktops.begin(), desktops.end(), [](const auto& desktop) { return desktop->isCurrent; });
  if (match == desktops.end()) return std::nullopt;
  return static_cast<int>(match - desktops.begin());
}

std::optional<SpaceWindow> focusedWindow() {
  const auto reading = platform().windowServer().beginRead();
  const auto front = platform().applications().frontmost();
  if (!front) return std::nullopt;
  const auto window = platform().windowList().frontWindow(front->pid);
  if (!window || !window->number || !window->bounds) return std::nullopt;
  return spaceWindow(*window);
}

std::set<SpaceID> workspaces(WindowID ofWindow) {
  const WindowID windows[] = {ofWindow};
  const auto spaces = SLS::copySpacesForWindows(allSpacesMask, windows).value_or(std::vector<SpaceID>{});
  return {spaces.begin(), spaces.end()};
}

bool isCurrentSpaceRestricted(const ScreenRef& screen) {
  const auto uuid = displayUUID(screen);
  if (!uuid) return false;
  const auto display = managedDisplay(*uuid);
  if (!display || !display->currentSpace || !display->currentSpace->id64 || !display->spaces) return false;
  const auto current = std::find_if(display->spaces->begin(), display->spaces->end(), [&](const ManagedSpace& space) {
    return idOf(space) == display->currentSpace->id64;
  });
  return current != display->spaces->end() && current->type.value_or(0) != 0;
}

void rememberActiveSpace(SpaceID space, const std::string& displayUUID) {
  const std::scoped_lock held(activeSpaces().activeSpaceLock);
  activeSpaces().lastKnownActiveSpaceID[displayUUID] = space;
}

std::optional<SpaceID> cachedActiveSpaceID(const std::string& displayUUID) {
  const std::scoped_lock held(activeSpaces().activeSpaceLock);
  const auto& known = activeSpaces().lastKnownActiveSpaceID;
  const auto found = known.find(displayUUID);
  if (found == known.end()) return std::nullopt;
  return found->second;
}

void cacheThumbnail(WindowID window, ImageRef preview) {
  const std::scoped_lock held(caches().lock);
  caches().thumbnailCache[window] = std::move(preview);
}

void forgetEverything() {
  {
    const std::scoped_lock held(caches().lock);
    caches().lastKnownCurrentDesktopKey.clear();
    caches().thumbnailCache.clear();
    caches().iconCache.clear();
    caches().iconlessUntil.clear();
  }
  const std::scoped_lock held(activeSpaces().activeSpaceLock);
  activeSpaces().lastKnownActiveSpaceID.clear();
}

}  // namespace tessaspaces::Spaces
