#pragma once

#include <string>

namespace tessaspaces {

/// Lets one copy of the program run for each user. The lock is held by the open file, so that the system
/// gives it back whichever way the process ends.
namespace SingleInstanceGuard {

/// The lock file: "local.tessaspaces.instance.lock" in $TMPDIR, else in $XDG_RUNTIME_DIR, else in /tmp.
[[nodiscard]] std::string lockPath();

/// Takes the lock for the rest of the process's life. False only when another process holds it: a lock
/// file that cannot be made never keeps the program from starting. Further calls succeed. Main thread.
[[nodiscard]] bool acquire();

}  // namespace SingleInstanceGuard
}  // namespace tessaspaces
