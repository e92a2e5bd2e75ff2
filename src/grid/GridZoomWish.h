#pragma once

#include <optional>

#include "platform/Dispatch.h"

namespace tessaspaces {

/// How long the overview's own zooms take; absent where the user wants none, by our settings or the system's. Asked
/// anew at each opening, closing and switch. Any thread.
[[nodiscard]] std::optional<Duration> gridZoomWish();

}  // namespace tessaspaces
