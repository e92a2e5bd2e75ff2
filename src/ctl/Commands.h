#pragma once

#include <iosfwd>

#include "ctl/Arguments.h"

namespace tessaspaces::ctl {

/// Carries a request out on the platform that is set (config and selftest need none). Results go to
/// `out`, reasons to `err`, each beginning with "tessactl: ". Blocks until a switch or a move has ended.
/// Main thread.
ExitCode run(const Request& request, std::ostream& out, std::ostream& err);

}  // namespace tessaspaces::ctl
