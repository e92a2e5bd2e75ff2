#pragma once

#include <iosfwd>

#include "ctl/Arguments.h"

namespace tessaspaces::ctl {

// Desktops of the display under the pointer come and go.

ExitCode run(const AddDesktop& request, std::ostream& out, std::ostream& err);
ExitCode run(const RemoveDesktop& request, std::ostream& out, std::ostream& err);

}  // namespace tessaspaces::ctl
