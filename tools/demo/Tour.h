#pragma once

#include "demo/Witness.h"

namespace tessaspaces::demo {

/// Walks through what the program does, from its start to its end, with real key presses.
void tour(harness::Session& session, Witness& witness);

}  // namespace tessaspaces::demo
