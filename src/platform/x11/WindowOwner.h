#pragma once

#include <cstdint>
#include <optional>

#include "platform/x11/Connection.h"
#include "platform/x11/Properties.h"

namespace tessaspaces {

/// The question whose window a window is, sent along with others.
struct OwnerCookies {
  xcb_get_property_cookie_t pid{};
  xcb_get_property_cookie_t machine{};
};
OwnerCookies askOwner(Connection& connection, xcb_window_t window);

/// The window's process on this machine. Where the window names none, or one of another machine, a negative
/// number that all windows of its X client share and that is no process's: -1 less the server's number of that
/// client. Absent for a window that is gone. Any thread.
[[nodiscard]] std::optional<std::int32_t> receiveOwner(Connection& connection, xcb_window_t window,
                                                       const OwnerCookies& cookies);

/// The same from the properties' values. `machine` and `ownMachine` count up to their first dot: some name
/// their domain. A window without `machine` is believed.
[[nodiscard]] std::int32_t ownerFrom(std::optional<std::uint32_t> pid, std::optional<std::string_view> machine,
                                     std::string_view ownMachine, std::uint32_t client);

}  // namespace tessaspaces
