#include "app/SingleInstanceGuard.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace tessaspaces::SingleInstanceGuard {
namespace {

/// Never closed: closing it would give the lock back.
int lockFileDescriptor = -1;

}  // namespace

std::string lockPath() {
  std::string folder = "/tmp";
  for (const char* variable : {"TMPDIR", "XDG_RUNTIME_DIR"}) {
    if (const char* value = std::getenv(variable); value != nullptr && *value != '\0') {
      folder = value;
      break;
    }
  }
  if (folder.back() != '/') folder += '/';
  return folder + "local.tessaspaces.instance.lock";
}

bool acquire() {
  if (lockFileDescriptor >= 0) return true;
  const int descriptor = open(lockPath().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (descriptor < 0) return true;
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
    lockFileDescriptor = descriptor;
    return true;
  }
  close(descriptor);
  return false;
}

}  // namespace tessaspaces::SingleInstanceGuard
