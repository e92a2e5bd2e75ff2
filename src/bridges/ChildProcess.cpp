#include "bridges/ChildProcess.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <system_error>
#include <utility>

#include "bridges/ChildSystem.h"

extern char** environ;

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds longestLimit = 24h;  // far from where adding to the clock overflows
constexpr milliseconds timeToDie = 1s;
constexpr milliseconds askAgain = 20ms;
constexpr int signalBase = 128;

ChildResult launchFailure(int error) {
  ChildResult result;
  result.failure = std::generic_category().message(error);
  return result;
}

/// The two parts of what posix_spawn wants to know, released again on every path.
class SpawnSettings {
 public:
  SpawnSettings() : error_(::posix_spawn_file_actions_init(&actions)) {
    if (error_ != 0) return;
    error_ = ::posix_spawnattr_init(&attributes);
    if (error_ != 0) ::posix_spawn_file_actions_destroy(&actions);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    if (error_ != 0) return;
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
  }
  [[nodiscard]] int error() const { return error_; }

  posix_spawn_file_actions_t actions{};
  posix_spawnattr_t attributes{};

 private:
  int error_;
};

int fill(SpawnSettings& settings, int output, int errorOutput) {
  short flags = POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
  sigset_t none;
  sigset_t all;
  sigemptyset(&none);  // these are macros on some systems
  sigfillset(&all);
  // These two cannot be changed, and some systems refuse the attempt.
  sigdelset(&all, SIGKILL);
  sigdelset(&all, SIGSTOP);

  auto& actions = settings.actions;
  auto& attributes = settings.attributes;
  if (const int e = ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0)) return e;
  if (const int e = ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO)) return e;
  if (const int e = ::posix_spawn_file_actions_adddup2(&actions, errorOutput, STDERR_FILENO)) return e;
  if (const int e = ChildSystem::keepOnlyStandardStreams(actions, flags)) return e;
  if (const int e = ::posix_spawnattr_setpgroup(&attributes, 0)) return e;
  if (const int e = ::posix_spawnattr_setsigmask(&attributes, &none)) return e;
  if (const int e = ::posix_spawnattr_setsigdefault(&attributes, &all)) return e;
  return ::posix_spawnattr_setflags(&attributes, flags);
}

int spawn(const ChildCommand& command, int output, int errorOutput, pid_t& child) {
  SpawnSettings settings;
  if (settings.error() != 0) return settings.error();
  if (const int error = fill(settings, output, errorOutput)) return error;
  std::string name = command.executable;
  auto arguments = command.arguments;
  std::vector<char*> pointers{name.data()};
  for (auto& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  return ::posix_spawn(&child, command.executable.c_str(), &settings.actions, &settings.attributes, pointers.data(),
                       environ);
}

/// One of the child's streams, and what was read of it.
struct Stream {
  Descriptor descriptor;
  std::string text;

  /// Reads what is there, `limit` bytes at most; closes the stream at its end.
  void read(std::size_t limit) {
    std::array<char, 65536> chunk;
    while (limit > 0 && descriptor.isOpen()) {
      const auto count = ::read(descriptor.number(), chunk.data(), std::min(limit, chunk.size()));
      if (count < 0 && errno == EINTR) continue;
      if (count < 0 && errno == EAGAIN) return;
      if (count <= 0) return descriptor.close();
      text.append(chunk.data(), static_cast<std::size_t>(count));
      limit -= static_cast<std::size_t>(count);
    }
  }

  /// Reads what is there now and no more: somebody who outlives the child may go on writing.
  void readTheRest() {
    int present = 0;
    if (descriptor.isOpen() && ::ioctl(descriptor.number(), FIONREAD, &present) == 0 && present > 0) {
      read(static_cast<std::size_t>(present));
    }
    descriptor.close();
  }
};

class Child {
 public:
  Child(pid_t pid, const ChildCommand& command, Descriptor output, Descriptor errorOutput)
      : pid_(pid),
        command_(command),
        watch_(command.exitNotice == ExitNotice::descriptor ? ChildSystem::watchExit(pid) : Descriptor()),
        output_{std::move(output), {}},
        error_{std::move(errorOutput), {}} {}

  ChildResult run(Clock::time_point deadline) {
    ChildResult result;
    if (const auto limit = readUntilEnd(deadline)) {
      kill();
      result.end = *limit;
      result.status = signalBase + SIGKILL;
      result.failure = *limit == ChildEnd::timeLimit
                           ? fmt::format("still running after {:g} s", seconds(command_.timeLimit))
                           : fmt::format("wrote more than {} bytes", command_.outputLimit);
    } else if (!status_) {
      result.end = ChildEnd::statusLost;
      result.failure = "its exit status was lost: SIGCHLD is ignored, or somebody else waited for it";
    } else if (WIFSIGNALED(*status_)) {
      result.end = ChildEnd::signalled;
      result.status = signalBase + WTERMSIG(*status_);
    } else {
      result.end = ChildEnd::exited;
      result.status = WEXITSTATUS(*status_);
    }
    result.output = std::move(output_.text);
    result.errorOutput = std::move(error_.text);
    return result;
  }

 private:
  static double seconds(milliseconds duration) { return std::chrono::duration<double>(duration).count(); }

  /// Reads both streams until the child has ended, or tells which limit it ran into.
  std::optional<ChildEnd> readUntilEnd(Clock::time_point deadline) {
    for (;;) {
      wait(deadline);
      const bool ended = hasEnded();  // asked before reading, so that all it wrote is there to be read
      for (auto* stream : {&output_, &error_}) {
        if (ended) {
          stream->readTheRest();
        } else {
          stream->read(readAtOnce);
        }
      }
      if (output_.text.size() + error_.text.size() > command_.outputLimit) return ChildEnd::outputLimit;
      if (ended) return std::nullopt;
      if (Clock::now() >= deadline) return ChildEnd::timeLimit;
    }
  }

  /// Returns when there is something to read, when the child has ended, at the deadline, or earlier.
  void wait(Clock::time_point deadline) const {
    auto left = std::max(std::chrono::ceil<milliseconds>(deadline - Clock::now()), 0ms);
    if (!watch_.isOpen()) {
      // The streams end when the child does, or a moment before.
      const bool ending = !output_.descriptor.isOpen() && !error_.descriptor.isOpen();
      left = std::min(left, ending ? 1ms : askAgain);
    }
    std::array<pollfd, 3> sources{pollfd{output_.descriptor.number(), POLLIN, 0},
                                  pollfd{error_.descriptor.number(), POLLIN, 0}, pollfd{watch_.number(), POLLIN, 0}};
    ::poll(sources.data(), sources.size(), static_cast<int>(left.count()));
  }

  bool hasEnded() {
    if (ended_) return true;
    int status = 0;
    pid_t answer = 0;
    do {
      answer = ::waitpid(pid_, &status, WNOHANG);
    } while (answer < 0 && errno == EINTR);
    if (answer == pid_) status_ = status;
    ended_ = answer != 0;
    return ended_;
  }

  void kill() {
    // Once it was reaped, its number may belong to another process. Until then it is safe, and the group is there.
    if (!ended_) {
      ::kill(-pid_, SIGKILL);
      ::kill(pid_, SIGKILL);  // it may have moved to another group
    }
    // Not earlier: a child that ends because nobody reads would leave the rest of its group behind.
    output_.descriptor.close();
    error_.descriptor.close();
    const auto deadline = Clock::now() + timeToDie;
    while (!hasEnded() && Clock::now() < deadline) wait(deadline);
  }

  static constexpr std::size_t readAtOnce = 1 << 20;  // so that a fast writer cannot keep us from the clock

  const pid_t pid_;
  const ChildCommand& command_;
  const Descriptor watch_;
  Stream output_;
  Stream error_;
  bool ended_ = false;
  std::optional<int> status_;  // as waitpid gives it; absent after the end when it was lost
};

}  // namespace

ChildResult runChild(const ChildCommand& command) {
  const auto deadline = Clock::now() + std::clamp(command.timeLimit, 0ms, longestLimit);
  ChildSystem::Pipe output;
  ChildSystem::Pipe errorOutput;
  if (const int error = ChildSystem::makePipe(output)) return launchFailure(error);
  if (const int error = ChildSystem::makePipe(errorOutput)) return launchFailure(error);
  pid_t pid = 0;
  if (const int error = spawn(command, output.writing.number(), errorOutput.writing.number(), pid)) {
    return launchFailure(error);
  }
  // Otherwise the streams would never end.
  output.writing.close();
  errorOutput.writing.close();
  return Child(pid, command, std::move(output.reading), std::move(errorOutput.reading)).run(deadline);
}

}  // namespace tessaspaces
