#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

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

  /// A window manager that understands desktops is running.
  [[nodiscard]] bool managed() const { return checkWindow != XCB_NONE && desktopCount > 0; }
};

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
