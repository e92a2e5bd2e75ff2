#include "settings/LogFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>

namespace tessaspaces {
std::string logLine(std::chrono::system_clock::time_point time, LogLevel level, std::string_view message) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm utc{};
  ::gmtime_r(&seconds, &utc);
  char date[32] = "";
  std::strftime(date, sizeof date, "%Y-%m-%d %H:%M:%S +0000", &utc);
  return fmt::format("[{}] [{}] {}\n", date, tag(level), message);
}

void appendToLog(const std::filesystem::path& file, std::string_view line, long long maxBytes) {
  // O_NONBLOCK: a pipe at this place must not hold the caller up.
  const int descriptor =
      ::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, S_IRUSR | S_IWUSR);
  if (descriptor < 0) return;
  const auto size = ::lseek(descriptor, 0, SEEK_END);
  while (!line.empty()) {
    const auto written = ::write(descriptor, line.data(), line.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) break;
    line.remove_prefix(static_cast<std::size_t>(written));
  }
  if (size >= maxBytes) rotateLog(descriptor, file);
  ::close(descriptor);
}

void rotateLog(int descriptor, const std::filesystem::path& file) {
  // Another process may have rotated since this one opened the file, and moving the new log over the backup
  // would lose the old one: only the file that was written to is moved, and by one process at a time.
  if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) return;
  struct stat opened {};
  struct stat named {};
  if (::fstat(descriptor, &opened) != 0 || ::stat(file.c_str(), &named) != 0) return;
  if (opened.st_dev != named.st_dev || opened.st_ino != named.st_ino) return;
  const auto backup = file.string() + ".1";
  ::unlink(backup.c_str());
  ::rename(file.c_str(), backup.c_str());  // if that fails, the next line tries again
}

}  // namespace tessaspaces
