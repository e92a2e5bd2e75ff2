#include "platform/x11/DragHabits.h"

#include <algorithm>
#include <array>

#include "platform/x11/Text.h"

namespace tessaspaces {
namespace {

// Each of them tried; names as they begin in _NET_WM_NAME, in lower case. Openbox, Metacity, Marco, Fluxbox and KWin
// take the window along.
constexpr auto leaveBehind = std::to_array<std::string_view>({
    "xfwm4",    // 4.18, and the window cannot be moved any more until it is mapped anew
    "awesome",  // 4.3, and the window comes to lie a little off
    "i3",       // 4.22
    "icewm",    // 3.3
    "jwm",      // 2.4
});

}  // namespace

bool takesHeldWindowsAlong(std::string_view managerName) {
  const auto name = lowerCase(managerName);
  return std::none_of(leaveBehind.begin(), leaveBehind.end(),
                      [&](std::string_view start) { return name.starts_with(start); });
}

}  // namespace tessaspaces
