#include "platform/x11/DesktopMap.h"

#include <algorithm>

namespace tessaspaces {
namespace {

std::string nameOf(const RootState& root, std::uint32_t desktop) {
  return desktop < root.names.size() ? root.names[desktop] : std::string();
}

}  // namespace

std::vector<std::uint32_t> DesktopMap::desktopsOf(std::size_t monitor, std::uint32_t desktopCount) const {
  std::vector<std::uint32_t> result;
  for (std::uint32_t desktop = 0; desktop < desktopCount; ++desktop) {
    if (shows(monitor, desktop)) result.push_back(desktop);
  }
  return result;
}

DesktopMap mapDesktops(std::span<const MonitorArea> monitors, std::span<const DesktopOrigin> origins,
                       std::uint32_t desktopCount) {
  DesktopMap map;
  if (monitors.size() < 2 || origins.empty()) return map;
  for (const auto& origin : origins.first(std::min<std::size_t>(origins.size(), desktopCount))) {
    const auto monitor = std::find_if(monitors.begin(), monitors.end(), [&](const MonitorArea& candidate) {
      return candidate.area.x == origin.x && candidate.area.y == origin.y;
    });
    if (monitor == monitors.end()) return map;
    map.owner.push_back(static_cast<std::size_t>(monitor - monitors.begin()));
  }
  const bool different =
      std::any_of(map.owner.begin(), map.owner.end(), [&](std::size_t owner) { return owner != map.owner[0]; });
  if (!different) {
    map.owner.clear();
    return map;
  }
  // Fewer origins than desktops: the two properties were read between two updates.
  map.owner.resize(desktopCount, 0);
  map.perMonitor = true;
  return map;
}

void VisibleDesktops::note(std::span<const MonitorArea> monitors, const DesktopMap& map, const RootState& root) {
  if (!map.perMonitor || !root.current) return;
  const auto owner = map.owner[*root.current];
  const std::lock_guard lock(mutex_);
  seen_[monitors[owner].identifier] = {*root.current, nameOf(root, *root.current)};
}

bool VisibleDesktops::needsWindows(const DesktopMap& map, const RootState& root, std::size_t monitor) {
  if (!map.perMonitor || (root.current && map.shows(monitor, *root.current))) return false;
  return map.desktopsOf(monitor, root.desktopCount).size() > 1;
}

std::optional<std::uint32_t> VisibleDesktops::current(std::span<const MonitorArea> monitors, const DesktopMap& map,
                                                      const RootState& root, std::size_t monitor,
                                                      std::span<const DesktopWindow> windows) const {
  if (!map.perMonitor || (root.current && map.shows(monitor, *root.current))) return root.current;
  const auto desktops = map.desktopsOf(monitor, root.desktopCount);
  if (desktops.empty()) return std::nullopt;

  const auto has = [&](std::uint32_t desktop, bool viewableOnly) {
    return std::any_of(windows.begin(), windows.end(), [&](const DesktopWindow& window) {
      return window.desktop == desktop && (window.viewable || !viewableOnly);
    });
  };
  const auto seen = remembered(monitors[monitor].identifier, root);
  const bool seenHere = seen && map.shows(monitor, *seen);
  if (seenHere && has(*seen, true)) return seen;
  for (const auto desktop : desktops) {
    if (has(desktop, true)) return desktop;
  }
  // Nothing of this monitor can be seen, so it shows an empty desktop, or one with all windows hidden.
  if (seenHere) return seen;
  for (const auto desktop : desktops) {
    if (!has(desktop, false)) return desktop;
  }
  return desktops.front();
}

std::optional<std::uint32_t> VisibleDesktops::remembered(const std::string& identifier, const RootState& root) const {
  const std::lock_guard lock(mutex_);
  const auto found = seen_.find(identifier);
  if (found == seen_.end()) return std::nullopt;
  const auto& seen = found->second;
  if (seen.index < root.desktopCount && nameOf(root, seen.index) == seen.name) return seen.index;
  const auto name = std::find(root.names.begin(), root.names.end(), seen.name);
  const auto index = static_cast<std::uint32_t>(name - root.names.begin());
  if (name == root.names.end() || index >= root.desktopCount) return std::nullopt;
  return index;
}

}  // namespace tessaspaces
