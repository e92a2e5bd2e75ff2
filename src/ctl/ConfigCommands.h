#pragma once

#include <iosfwd>

#include "ctl/Arguments.h"

namespace tessaspaces::ctl {

// The settings from the command line. Keys are those of the configuration file; the prefix "tessaspaces."
// may be left out. A value is checked before it is stored.

ExitCode run(const ConfigList& request, std::ostream& out, std::ostream& err);
ExitCode run(const ConfigGet& request, std::ostream& out, std::ostream& err);
ExitCode run(const ConfigSet& request, std::ostream& out, std::ostream& err);
ExitCode run(const ConfigUnset& request, std::ostream& out, std::ostream& err);

}  // namespace tessaspaces::ctl
