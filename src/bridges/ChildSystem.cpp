#include "bridges/ChildSystem.h"

#include <fcntl.h>

#include <cerrno>

#if __has_include(<sys/event.h>)
#include <sys/event.h>
#endif
#if __has_include(<sys/syscall.h>)
#include <sys/syscall.h>
#endif

#if defined(__GLIBC__)
#if __GLIBC_PREREQ(2, 34)
#define TESSASPACES_CLOSEFROM
#endif
#endif

namespace tessaspaces::ChildSystem {
namespace {

bool openPipe(int (&ends)[2]) {
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
  // A child started by somebody else at this very moment could get hold of these, if it were not that such
  // children are started with nothing but what they are meant to have.
  if (::pipe(ends) != 0) return false;
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  return true;
#else
  return ::pipe2(ends, O_CLOEXEC) == 0;
#endif
}

/// When this process runs without some of its standard streams, a pipe may get one of their numbers, and
/// setting up the child's streams would then overwrite it.
int moveAboveStandardStreams(Descriptor& descriptor) {
  if (descriptor.number() > STDERR_FILENO) return 0;
  const int moved = ::fcntl(descriptor.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (moved < 0) return errno;
  descriptor = Descriptor(moved);
  return 0;
}

}  // namespace

int makePipe(Pipe& pipe) {
  int ends[2];
  if (!openPipe(ends)) return errno;
  pipe = {Descriptor(ends[0]), Descriptor(ends[1])};
  if (const int error = moveAboveStandardStreams(pipe.reading)) return error;
  if (const int error = moveAboveStandardStreams(pipe.writing)) return error;
  return ::fcntl(pipe.reading.number(), F_SETFL, O_NONBLOCK) == 0 ? 0 : errno;
}

Descriptor watchExit([[maybe_unused]] pid_t child) {
#if defined(SYS_pidfd_open)
  // Close-on-exec by itself. The C library's own wrapper cannot be linked from C++ with glibc 2.36.
  return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
#elif defined(EVFILT_PROC)
  Descriptor queue(::kqueue());
  if (!queue.isOpen()) return queue;
  ::fcntl(queue.number(), F_SETFD, FD_CLOEXEC);
  struct kevent event;
  EV_SET(&event, child, EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
  if (::kevent(queue.number(), &event, 1, nullptr, 0, nullptr) != 0) queue.close();
  return queue;
#else
  return {};
#endif
}

int keepOnlyStandardStreams([[maybe_unused]] posix_spawn_file_actions_t& actions, [[maybe_unused]] short& flags) {
#if defined(POSIX_SPAWN_CLOEXEC_DEFAULT)
  flags = static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT);
  return 0;
#elif defined(TESSASPACES_CLOSEFROM)
  return ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
#else
  return 0;
#endif
}

}  // namespace tessaspaces::ChildSystem
