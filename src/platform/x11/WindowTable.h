#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/WindowList.h"
#include "platform/x11/Connection.h"
#include "platform/x11/RootState.h"

namespace tessaspaces {

/// The desktop number of a window that is on all of them.
constexpr std::uint32_t allDesktops = 0xffffffff;

/// One client window.
struct WindowRecord {
  xcb_window_t window = XCB_NONE;
  /// Absent when the window manager has not said.
  std::optional<std::uint32_t> desktop;
  bool viewable = false;

  // Only with WindowDetail::everything.
  int layer = 0;
  bool hidden = false;
  /// Has the state that keeps it on every desktop of some window managers, wherever it is sent.
  bool sticky = false;
  bool fullScreen = false;
  /// As `receiveOwner` gives it.
  std::optional<std::int32_t> pid;
  std::optional<std::string> title;
  WindowBounds bounds;
};

enum class WindowDetail { desktops, everything };

/// Layers of the windows that are not ordinary ones; their order is that in which they usually stack.
namespace layers {
constexpr int desktop = -1000;
constexpr int ordinary = 0;
constexpr int toolbar = 3;
constexpr int dock = 20;
constexpr int splash = 25;
constexpr int menu = 101;
constexpr int notification = 102;
}  // namespace layers

/// Reads the windows, in the given order, in one batch of requests; with everything one more for the
/// windows that have a title only in the old property. Windows that are gone are left out, and those that are
/// listed again. Any thread.
[[nodiscard]] std::vector<WindowRecord> readWindows(Connection& connection, std::span<const xcb_window_t> listed,
                                                    WindowDetail detail);

/// The title alone, as the reading with everything finds it, in one batch; absent when it has none or is gone. Any
/// thread.
[[nodiscard]] std::optional<std::string> readTitle(Connection& connection, xcb_window_t window);

/// Whether this property holds the title or is what it is taken from where that one is missing.
[[nodiscard]] bool isTitle(const Atoms& atoms, xcb_atom_t property);

/// Whether the reading with everything looks at this property of a window.
[[nodiscard]] bool readsOfWindow(const Atoms& atoms, xcb_atom_t property);

/// Without a client list: the windows that carry WM_STATE, front to back, looking inside frames.
[[nodiscard]] std::vector<xcb_window_t> findClients(Connection& connection);

}  // namespace tessaspaces
