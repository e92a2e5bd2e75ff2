#pragma once

#include "platform/x11/Connection.h"

namespace tessaspaces {

/// Whether the user's touchpad, or where there is none the mouse, scrolls the natural way: as its libinput driver says.
/// False where no device says anything. Two round trips: asked for once in a gesture, so that nothing is kept that a
/// device plugged in later, or a change of the settings, would make wrong. Any thread.
[[nodiscard]] bool scrollsNaturally(Connection& connection);

}  // namespace tessaspaces
