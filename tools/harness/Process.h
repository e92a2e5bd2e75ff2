#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "harness/Waiting.h"

namespace tessaspaces::harness {

using Environment = std::map<std::string, std::string>;

/// What to start. The child sees `environment` and nothing else.
struct Command {
  std::vector<std::string> arguments;  // the program first, looked up in this process's PATH
  Environment environment;
  std::filesystem::path output;  // receives standard output and standard error; empty: thrown away
  std::filesystem::path folder;  // working folder; empty: this process's own
  int passedDescriptor = -1;     // the child finds this descriptor as its number 3
};

/// A child process in a process group of its own, ended with this object: first by SIGTERM, then, when it does
/// not listen, by SIGKILL; what it started in turn ends with it. Should this process die, the kernel ends the
/// child.
class Process {
 public:
  Process() = default;
  explicit Process(const Command& command);
  ~Process();
  Process(Process&& other) noexcept { swap(other); }
  Process& operator=(Process&& other) noexcept;

  /// 0 when nothing was started or what was started has been waited for.
  [[nodiscard]] pid_t pid() const { return pid_; }
  [[nodiscard]] bool running();
  /// Waits for the end. The status is the shell's: the exit code, or 128 + the signal's number. Nothing when
  /// the process still runs at the deadline. Repeatable.
  std::optional<int> wait(Milliseconds timeout = patience);
  /// SIGTERM to the process, then wait; kills the whole group when it still runs at the deadline, and then
  /// answers nothing.
  std::optional<int> terminate(Milliseconds timeout = patience);
  void signal(int number) const;
  /// All that it has written so far.
  [[nodiscard]] std::string output() const;
  [[nodiscard]] const std::filesystem::path& outputFile() const { return output_; }
  /// Readable as soon as the process has ended; -1 when there is none.
  [[nodiscard]] int endDescriptor() const { return descriptor_; }

 private:
  void swap(Process& other) noexcept;

  pid_t pid_ = 0;
  int descriptor_ = -1;
  std::optional<int> status_;
  std::filesystem::path output_;
};

struct Result {
  int status = -1;  // as Process::wait
  std::string output;
};

/// Runs a command to its end; status -1 when it could not be started or ran out of time.
Result run(Command command, Milliseconds timeout = patience);

[[nodiscard]] std::string readFile(const std::filesystem::path& file);
void writeFile(const std::filesystem::path& file, std::string_view text);
/// Where a program lies in PATH; nothing when it is not installed.
[[nodiscard]] std::optional<std::filesystem::path> findProgram(std::string_view name);

/// Waits until `file` holds `text` at or after byte `from`, woken by the file system. False at the deadline, or
/// when `writer` has ended without writing it.
bool waitForText(const std::filesystem::path& file, std::string_view text, std::size_t from = 0,
                 Milliseconds timeout = patience, const Process* writer = nullptr);

/// A new folder under the system's temporary one, removed with everything in it at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tessaspaces::harness
