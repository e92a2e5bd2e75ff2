#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/x11/Monitors.h"
#include "platform/x11/RootState.h"

namespace tessaspaces {

/// A monitor that shows desktops of its own (one that mirrors another does not).
struct MonitorArea {
  std::string identifier;
  PixelRect area;
  friend bool operator==(const MonitorArea&, const MonitorArea&) = default;
};

/// Which monitor each desktop belongs to. With most window managers all desktops are shared by all
/// monitors; i3, bspwm and the like give each monitor its own, and say so with the desktops' origins.
struct DesktopMap {
  bool perMonitor = false;
  /// By desktop, the index of its monitor; empty when desktops are shared.
  std::vector<std::size_t> owner;

  [[nodiscard]] std::vector<std::uint32_t> desktopsOf(std::size_t monitor, std::uint32_t desktopCount) const;
  [[nodiscard]] bool shows(std::size_t monitor, std::uint32_t desktop) const {
    return !perMonitor || (desktop < owner.size() && owner[desktop] == monitor);
  }
};

/// Desktops belong to monitors when there are several monitors, every origin is that of a monitor, and
/// not all are the same one.
[[nodiscard]] DesktopMap mapDesktops(std::span<const MonitorArea> monitors, std::span<const DesktopOrigin> origins,
                                     std::uint32_t desktopCount);

/// One window, as far as it tells which desktops are visible.
struct DesktopWindow {
  std::uint32_t desktop = 0;
  bool viewable = false;
};

/// Remembers which desktop each monitor showed when it had the focus: the root tells only the one of the
/// focused monitor. Desktops are remembered by name too, since their numbers shift when others go. Any
/// thread.
class VisibleDesktops {
 public:
  /// Takes in what the root says now.
  void note(std::span<const MonitorArea> monitors, const DesktopMap& map, const RootState& root);

  /// The desktop that the monitor shows; the windows are all windows, needed only where `needsWindows`.
  [[nodiscard]] std::optional<std::uint32_t> current(std::span<const MonitorArea> monitors, const DesktopMap& map,
                                                     const RootState& root, std::size_t monitor,
                                                     std::span<const DesktopWindow> windows) const;

  /// Whether only the windows can tell what the monitor shows.
  [[nodiscard]] static bool needsWindows(const DesktopMap& map, const RootState& root, std::size_t monitor);

 private:
  struct Seen {
    std::uint32_t index = 0;
    std::string name;
  };
  [[nodiscard]] std::optional<std::uint32_t> remembered(const std::string& identifier, const RootState& root) const;

  mutable std::mutex mutex_;  // guards seen_
  std::map<std::string, Seen> seen_;
};

}  // namespace tessaspaces
