#pragma once

#include "platform/x11/Connection.h"
#include "platform/x11/Reader.h"

namespace tessaspaces {

/// Asks the window manager to take the user to the window: to its desktop, the window in front and focused. Any thread.
void activateWindow(Connection& connection, Reader& reader, xcb_window_t window);

}  // namespace tessaspaces
