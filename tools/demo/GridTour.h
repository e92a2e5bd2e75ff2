#pragma once

#include "demo/Witness.h"

namespace tessaspaces::demo {

/// Through the overview, with real keys, clicks and drags, the program running: on one display, with all its views, and
/// on two.
void tourOfTheGrid(harness::Session& session, Witness& witness);

/// Sixteen desktops with a hundred windows, in a session of their own.
void tourOfManyWindows(harness::Manager manager, Witness& witness);

}  // namespace tessaspaces::demo
