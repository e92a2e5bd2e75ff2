#pragma once

#include <spawn.h>
#include <sys/types.h>

#include "bridges/Descriptor.h"

/// The few things about child processes that each Unix does in its own way. Any thread.
namespace tessaspaces::ChildSystem {

struct Pipe {
  Descriptor reading;  // does not block
  Descriptor writing;
};

/// Makes a pipe, both ends close-on-exec and numbered above the standard streams. 0 or the error number.
[[nodiscard]] int makePipe(Pipe& pipe);

/// A descriptor that becomes readable when the child ends; none where the system does not offer it or refuses.
[[nodiscard]] Descriptor watchExit(pid_t child);

/// Lets the child have its standard streams only, whatever this process forgot to mark as close-on-exec. To be
/// called after the other actions were added. 0 or the error number.
[[nodiscard]] int keepOnlyStandardStreams(posix_spawn_file_actions_t& actions, short& flags);

}  // namespace tessaspaces::ChildSystem
