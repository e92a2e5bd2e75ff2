#pragma once

#include <string_view>

namespace tessaspaces {

/// What the window manager of this name does with a window that is being dragged while it shows another desktop: true
/// when it is not known to leave it behind. See WindowServer::carriesHeldWindows.
[[nodiscard]] bool takesHeldWindowsAlong(std::string_view managerName);

}  // namespace tessaspaces
