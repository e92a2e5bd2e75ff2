#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/x11/WindowTable.h"

namespace tessaspaces {

/// One message of a pager to the window manager, or a wait for what came of one.
struct PagerMessage {
  enum class Kind { moveWindow, awaitMove, showDesktop, setCount };
  Kind kind = Kind::moveWindow;
  /// Of the first two kinds only.
  xcb_window_t window = XCB_NONE;
  /// The desktop, `allDesktops` for every one; the number of desktops.
  std::uint32_t value = 0;
  friend bool operator==(const PagerMessage&, const PagerMessage&) = default;
};
using PagerMessages = std::vector<PagerMessage>;

/// The desktops of one moment.
struct DesktopState {
  std::uint32_t count = 0;
  std::optional<std::uint32_t> current;
  std::span<const WindowRecord> windows;
};

/// EWMH drops the last desktop alone, so to remove one before it the windows behind move one desktop down, and the
/// user along with them when one of these is shown; those of the removed desktop stay, and are then on the desktop that
/// takes its place. In an order in which no window is seen that was not, and none vanishes that was, but for those that
/// are joined. `removed` is not the last.
[[nodiscard]] PagerMessages planRemoval(const DesktopState& desktops, std::uint32_t removed);
/// What takes all of that back, for a window manager that has done everything but drop the desktop.
[[nodiscard]] PagerMessages planReturn(const DesktopState& desktops, std::uint32_t removed);

/// The null-separated names without that of one desktop; names of more desktops than there are stay.
[[nodiscard]] std::string withoutName(std::string_view names, std::uint32_t removed);

}  // namespace tessaspaces
