#pragma once

#include "harness/WindowManager.h"

namespace tessaspaces::harness {

struct Launch {
  std::vector<std::string> arguments;
  Environment environment;
};

/// Writes a window manager's configuration into the server's home and says how to start it.
Launch prepareWindowManager(const XServer& server, Manager manager, const WindowManagerOptions& options);

}  // namespace tessaspaces::harness
