#include "grid/ExpectedMoves.h"

#include <algorithm>

namespace tessaspaces {
namespace {

struct Entry {
  ImageRef thumb;
  ImageRef icon;
};

/// Takes the window out of the desktop; absent when it is not on it.
std::optional<Entry> take(DesktopInfo& desktop, WindowID id) {
  const auto found = std::find_if(desktop.windows.begin(), desktop.windows.end(),
                                  [&](const SpaceWindow& window) { return window.id == id; });
  if (found == desktop.windows.end()) return std::nullopt;
  const auto position = found - desktop.windows.begin();
  Entry entry{desktop.thumbs[static_cast<std::size_t>(position)], desktop.icons[static_cast<std::size_t>(position)]};
  desktop.windows.erase(found);
  desktop.thumbs.erase(desktop.thumbs.begin() + position);
  desktop.icons.erase(desktop.icons.begin() + position);
  return entry;
}

SpaceWindow* find(DesktopInfo& desktop, WindowID id) {
  const auto found = std::find_if(desktop.windows.begin(), desktop.windows.end(),
                                  [&](const SpaceWindow& window) { return window.id == id; });
  return found == desktop.windows.end() ? nullptr : &*found;
}

}  // namespace

ExpectedMoves::Number ExpectedMoves::add(const SpaceWindow& window, SpaceID to, bool leaves) {
  moves_[window.id] = {++last_, window, to, leaves};
  return last_;
}

bool ExpectedMoves::isLeaving(WindowID window) const {
  const auto found = moves_.find(window);
  return found != moves_.end() && found->second.leaves;
}

bool ExpectedMoves::remove(WindowID window, Number number) {
  const auto found = moves_.find(window);
  if (found == moves_.end() || found->second.number != number) return false;
  moves_.erase(found);
  return true;
}

void ExpectedMoves::apply(SpacesSnapshot& snapshot) const {
  for (const auto& [id, move] : moves_) {
    std::optional<Entry> taken;
    // Displays that share their desktops list each of them once more.
    for (const auto& desktop : snapshot.desktops) {
      if (!move.leaves || desktop->spaceID == move.to) continue;
      if (auto entry = take(*desktop, id)) taken = entry;
    }
    for (const auto& desktop : snapshot.desktops) {
      if (desktop->spaceID != move.to) continue;
      if (auto* there = find(*desktop, id)) {
        there->bounds = move.window.bounds;
      } else if (taken) {
        desktop->windows.insert(desktop->windows.begin(), move.window);
        desktop->thumbs.insert(desktop->thumbs.begin(), taken->thumb);
        desktop->icons.insert(desktop->icons.begin(), taken->icon);
      }
    }
  }
}

}  // namespace tessaspaces
