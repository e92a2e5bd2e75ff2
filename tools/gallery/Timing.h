#pragma once

namespace tessaspaces::gallery {

/// Times what the overview draws and prints it. Zero when it did.
int printTimes();

}  // namespace tessaspaces::gallery
