#include "model/DisplayScreens.h"

#include <algorithm>
#include <set>

#include "platform/Platform.h"

namespace tessaspaces::Spaces {

std::optional<std::string> displayUUID(const ScreenRef& screen) {
  if (!directDisplayID(screen)) return std::nullopt;
  return screen->uuid;
}

std::optional<DisplayID> directDisplayID(const ScreenRef& screen) {
  return screen ? screen->displayID : std::nullopt;
}

ScreenRef screenForDisplayUUID(const std::string& uuid) {
  const auto screens = platform().screens().screens();
  const auto match = std::find_if(screens.begin(), screens.end(),
                                  [&](const ScreenRef& screen) { return displayUUID(screen) == uuid; });
  if (match != screens.end()) return *match;
  return screens.empty() ? nullptr : screens.front();
}

ScreenRef canonicalScreen(const ScreenRef& screen) {
  const auto id = directDisplayID(screen);
  if (!id || !screen->inMirrorSet) return screen;
  const DisplayID master = screen->mirrors != 0 ? screen->mirrors : *id;
  for (const auto& candidate : platform().screens().screens()) {
    const auto candidateID = directDisplayID(candidate);
    const bool inSet = candidateID && (*candidateID == master || candidate->mirrors == master);
    if (inSet && candidate->builtIn) return candidate;
  }
  return screen;
}

std::vector<ScreenRef> distinctScreens() {
  std::vector<ScreenRef> distinct;
  std::set<DisplayID> seen;
  for (const auto& screen : platform().screens().screens()) {
    const auto canonical = canonicalScreen(screen);
    const auto id = directDisplayID(canonical);
    if (id && seen.insert(*id).second) distinct.push_back(canonical);
  }
  return distinct;
}

ScreenRef screenWithCursor() {
  const Point pointer = platform().screens().pointer();
  for (const auto& screen : platform().screens().screens()) {
    if (screen->frame.contains(pointer)) return canonicalScreen(screen);
  }
  return canonicalScreen(platform().screens().mainScreen());
}

}  // namespace tessaspaces::Spaces
