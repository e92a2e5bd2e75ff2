#pragma once

#include "contract/WorldDriver.h"

namespace tessaspaces::contract {

/// One for each window manager that the suite runs under, each world on an X server of its own.
std::vector<Backend> x11Backends();
/// Those, one under a window manager that composites, and one whose server shares no memory, as distant ones do.
std::vector<Backend> x11CaptureBackends();

}  // namespace tessaspaces::contract
