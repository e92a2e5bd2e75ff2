#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tessaspaces {

/// How the end of a child is noticed. Tests choose the second, which is what the first falls back on.
enum class ExitNotice {
  descriptor,  // the system tells, where it can
  asking,      // by asking again and again, at most 20 ms apart
};

/// What to run.
struct ChildCommand {
  /// A path; it is not searched for.
  std::string executable;
  /// Handed over one by one, as they are: there is no shell between. The executable's own name is not one of them.
  std::vector<std::string> arguments;
  /// In real time, from the start on. A child that has not ended by then is killed with its whole process group.
  std::chrono::milliseconds timeLimit = std::chrono::seconds(10);
  /// In bytes, both streams together. A child that writes more is killed in the same way.
  std::size_t outputLimit = std::size_t{64} << 20;
  ExitNotice exitNotice = ExitNotice::descriptor;
};

enum class ChildEnd {
  exited,        // by itself
  signalled,     // a signal that we did not send ended it
  launchFailed,  // it never ran
  timeLimit,
  outputLimit,
  /// It ended, but somebody else took its exit status, or this process ignores SIGCHLD, in which case the system
  /// throws it away: whether the child did its work is not known.
  statusLost,
};

struct ChildResult {
  ChildEnd end = ChildEnd::launchFailed;
  /// The exit status; 128 + the signal's number when a signal ended it (so 137 at either limit); -1 when it is
  /// not known or there was none.
  int status = -1;
  /// What was written until the end; any bytes.
  std::string output;
  std::string errorOutput;
  /// Why it failed, in words: the system's description for launchFailed, a sentence for the limits and for a lost
  /// status. Empty when the child ended by itself or by a signal.
  std::string failure;

  [[nodiscard]] bool succeeded() const { return end == ChildEnd::exited && status == 0; }
};

/// Runs one child in a process group of its own and returns when it has ended and been reaped. It reads from
/// /dev/null, has no other descriptor of this process, no signal blocked and every signal at its default. Both
/// streams are read as they fill, so that the child never waits for us on either.
///
/// A process that the child leaves behind may keep the streams open: what was written until the child ended is
/// returned, the rest is not waited for, and the process is left alone. Only a limit kills the group.
///
/// Blocks for at most the time limit, plus a second for a killed child to die. One that cannot be killed, because it
/// changed its user or hangs in the system, is given up: only then a zombie may stay. Any thread, several at once.
[[nodiscard]] ChildResult runChild(const ChildCommand& command);

}  // namespace tessaspaces
