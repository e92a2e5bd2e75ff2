#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/WindowServer.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

struct PixelPoint {
  int x = 0;
  int y = 0;
  friend bool operator==(const PixelPoint&, const PixelPoint&) = default;
};
using DesktopOrigin = PixelPoint;

/// What the root window says about the window manager and its desktops.
struct RootState {
  /// The window manager's own window, validated to exist still; none without an EWMH window manager.
  xcb_window_t checkWindow = XCB_NONE;
  std::string managerName;
  std::uint32_t desktopCount = 0;
  std::optional<std::uint32_t> current;
  std::vector<std::string> names;
  std::vector<DesktopOrigin> viewports;
  xcb_window_t activeWindow = XCB_NONE;
  /// Pixels from the top left; absent when the server gave no answer.
  std::optional<PixelPoint> pointer;
  /// Front to back; only with RootDetail::windows, and absent when the root lists none.
  std::optional<std::vector<xcb_window_t>> clients;

  /// By desktop: see numberSpaces.
  std::vector<SpaceID> spaces;

  /// A desktop of `desktopCount`.
  [[nodiscard]] SpaceID spaceOf(std::uint32_t desktop) const { return spaces[desktop]; }
  /// Absent for a space that is not there.
  [[nodiscard]] std::optional<std::uint32_t> desktopOf(SpaceID space) const;

  /// The window manager is i3, whose desktops are its workspaces: those with windows and those that are shown.
  [[nodiscard]] bool isI3() const;
  /// A window manager that understands desktops is running.
  [[nodiscard]] bool managed() const { return checkWindow != XCB_NONE && desktopCount > 0; }
};

/// The ids of the desktops. An EWMH desktop is no more than its number, so its id is that number plus one. But
/// i3 drops a workspace that is left empty and numbers the others anew, in the middle of a switch too; its
/// workspaces are known by their names, and so are their ids made, which also stay the same in its next session.
[[nodiscard]] std::vector<SpaceID> numberSpaces(std::string_view managerName, std::uint32_t desktopCount,
                                                std::span<const std::string> names);

enum class RootDetail { desktops, windows };

/// Reads it in one batch of requests. Any thread.
class RootReader {
 public:
  explicit RootReader(Connection& connection) : connection_(connection) {}
  /// One round trip; one more when the window manager is not the one of the last reading.
  RootState read(RootDetail detail);
  /// Whether the reading looks at this property of the root.
  [[nodiscard]] static bool reads(const Atoms& atoms, xcb_atom_t property);

 private:
  Connection& connection_;
  // The property proves a live window manager only when its window carries it too. Asking the window of
  // the last reading along with the rest saves the second round trip.
  std::atomic<xcb_window_t> lastCheckWindow_ = XCB_NONE;
};

}  // namespace tessaspaces
