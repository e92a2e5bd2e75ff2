#include "harness/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/inotify.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace tessaspaces::harness {
namespace {

/// Between fork and exec: only calls that are safe after a fork of a process with threads.
[[noreturn]] void becomeChild(const Command& command, const char* program, char* const* arguments,
                              char* const* environment, int output, pid_t parent) {
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
  dup2(input, STDIN_FILENO);
  if (command.passedDescriptor == 3) {
    fcntl(3, F_SETFD, 0);
  } else if (command.passedDescriptor >= 0) {
    dup2(command.passedDescriptor, 3);
  }
  if (!command.folder.empty() && chdir(command.folder.c_str()) != 0) _exit(127);
  execve(program, arguments, environment);
  _exit(127);
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

}  // namespace

Process::Process(const Command& command) : output_(command.output) {
  const auto program = findProgram(command.arguments.at(0));
  if (!program) throw Failure(command.arguments[0] + " is not installed");
  std::vector<std::string> arguments = command.arguments;
  std::vector<std::string> variables;
  for (const auto& [key, value] : command.environment) variables.push_back(key + "=" + value);
  const std::vector<char*> argv = pointers(arguments);
  const std::vector<char*> envp = pointers(variables);
  const int output =
      open(output_.empty() ? "/dev/null" : output_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (output < 0) throw Failure("cannot write " + output_.string() + ": " + std::strerror(errno));
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) becomeChild(command, program->c_str(), argv.data(), envp.data(), output, parent);
  close(output);
  if (child < 0) throw Failure(std::string("fork: ") + std::strerror(errno));
  setpgid(child, child);
  pid_ = child;
  descriptor_ = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
}

Process::~Process() {
  if (pid_ != 0) terminate(Milliseconds(5'000));
  if (descriptor_ >= 0) close(descriptor_);
}

Process& Process::operator=(Process&& other) noexcept {
  Process old;
  old.swap(*this);
  swap(other);
  return *this;
}

void Process::swap(Process& other) noexcept {
  std::swap(pid_, other.pid_);
  std::swap(descriptor_, other.descriptor_);
  std::swap(status_, other.status_);
  std::swap(output_, other.output_);
}

bool Process::running() {
  return pid_ != 0 && !wait(Milliseconds(0));
}

std::optional<int> Process::wait(Milliseconds timeout) {
  if (pid_ == 0) return status_;
  pollfd end{descriptor_, POLLIN, 0};
  const Deadline deadline(timeout);
  while (poll(&end, 1, deadline.pollTimeout()) < 0 && errno == EINTR) {
  }
  if (end.revents == 0) return std::nullopt;
  // Before it is reaped its number, and with it the group's, cannot have been given to anybody else.
  kill(-pid_, SIGKILL);
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = 0;
  status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return status_;
}

std::optional<int> Process::terminate(Milliseconds timeout) {
  if (pid_ == 0) return status_;
  signal(SIGTERM);
  const auto status = wait(timeout);
  if (!status) {
    kill(-pid_, SIGKILL);
    wait();
  }
  return status;
}

void Process::signal(int number) const {
  if (pid_ != 0) kill(pid_, number);
}

std::string Process::output() const {
  return output_.empty() ? std::string() : readFile(output_);
}

Result run(Command command, Milliseconds timeout) {
  std::optional<TemporaryFolder> folder;
  if (command.output.empty()) command.output = folder.emplace().path() / "output";
  Process process(command);
  Result result;
  result.status = process.wait(timeout).value_or(-1);
  result.output = process.output();
  return result;
}

std::string readFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

void writeFile(const std::filesystem::path& file, std::string_view text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream.write(text.data(), static_cast<std::streamsize>(text.size()));
  if (!stream.flush()) throw Failure("cannot write " + file.string());
}

std::optional<std::filesystem::path> findProgram(std::string_view name) {
  if (name.find('/') != std::string_view::npos) {
    if (access(std::string(name).c_str(), X_OK) == 0) return std::filesystem::path(name);
    return std::nullopt;
  }
  const char* path = std::getenv("PATH");
  std::istringstream folders(path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin");
  for (std::string folder; std::getline(folders, folder, ':');) {
    const auto candidate = std::filesystem::path(folder) / name;
    if (access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  return std::nullopt;
}

bool waitForText(const std::filesystem::path& file, std::string_view text, std::size_t from, Milliseconds timeout,
                 const Process* writer) {
  const auto found = [&] { return readFile(file).find(text, from) != std::string::npos; };
  const int watch = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
  std::filesystem::create_directories(file.parent_path());
  inotify_add_watch(watch, file.parent_path().c_str(), IN_MODIFY | IN_CREATE | IN_MOVED_TO | IN_CLOSE_WRITE);
  const Deadline deadline(timeout);
  bool seen = found();
  while (!seen && !deadline.passed()) {
    pollfd ready[2] = {{watch, POLLIN, 0}, {writer != nullptr ? writer->endDescriptor() : -1, POLLIN, 0}};
    poll(ready, 2, deadline.pollTimeout());
    char events[4096];
    while (read(watch, events, sizeof events) > 0) {
    }
    seen = found();
    if (ready[1].revents != 0) break;
  }
  close(watch);
  return seen;
}

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tessaspaces-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw Failure(std::string("mkdtemp: ") + std::strerror(errno));
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace tessaspaces::harness
