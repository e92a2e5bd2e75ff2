#pragma once

#include <iosfwd>

#include "ctl/Arguments.h"

namespace tessaspaces::ctl {

/// Prints the displays with their grids, desktops and windows; as JSON for programs to read.
ExitCode run(const List& request, std::ostream& out, std::ostream& err);

}  // namespace tessaspaces::ctl
