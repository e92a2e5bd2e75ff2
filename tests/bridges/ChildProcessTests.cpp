#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "bridges/ChildProcess.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// Runs small shell scripts, with both ways to notice the end. No test may leave a descriptor or a child behind.
class ChildProcess : public testing::TestWithParam<ExitNotice> {
 protected:
  ChildProcess() {
    // Grandchildren that lose their parent become ours, so that a test can see what became of them.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
  }
  ~ChildProcess() override {
    EXPECT_EQ(openDescriptors(), descriptorsBefore_);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child was left";
    prctl(PR_SET_CHILD_SUBREAPER, 0);
  }

  static ChildCommand command(std::string executable, std::vector<std::string> arguments) {
    ChildCommand made{std::move(executable), std::move(arguments)};
    made.exitNotice = GetParam();
    return made;
  }
  static ChildCommand script(std::string text) { return command("/bin/sh", {"-c", std::move(text)}); }

  /// Waits for a process that lost its parent to end; whether the signal ended it.
  static bool isEnded(pid_t process, int signal) {
    int status = 0;
    if (waitpid(process, &status, 0) == process) return WIFSIGNALED(status) && WTERMSIG(status) == signal;
    // Its parent, dying in the midst of a wait, may have taken its status.
    return kill(process, 0) != 0;
  }

 private:
  std::ptrdiff_t descriptorsBefore_ = openDescriptors();
};

INSTANTIATE_TEST_SUITE_P(, ChildProcess, testing::Values(ExitNotice::descriptor, ExitNotice::asking),
                         [](const auto& each) {
                           return each.param == ExitNotice::descriptor ? "ByDescriptor" : "ByAsking";
                         });

TEST_P(ChildProcess, HandsOverEachArgumentAsItIs) {
  const auto result = runChild(command("/usr/bin/printf", {"<%s>", "a b", "", "'\"", "$HOME *", "two\nlines", "ř"}));
  EXPECT_TRUE(result.succeeded()) << result.failure;
  EXPECT_EQ(result.output, "<a b><><'\"><$HOME *><two\nlines><ř>");
}

TEST_P(ChildProcess, TellsHowTheChildEnded) {
  struct Case {
    const char* script;
    ChildEnd end;
    int status;
    const char* output;
    const char* errorOutput;
  };
  const Case cases[]{
      {"echo out; echo err >&2", ChildEnd::exited, 0, "out\n", "err\n"},
      {"echo out; echo err >&2; exit 3", ChildEnd::exited, 3, "out\n", "err\n"},
      {"echo out; kill -TERM $$", ChildEnd::signalled, 143, "out\n", ""},
      {"kill -KILL $$", ChildEnd::signalled, 137, "", ""},
      // It goes on working after it has closed its streams.
      {"exec >&- 2>&-; for i in 1 2 3; do /bin/true; done; exit 5", ChildEnd::exited, 5, "", ""},
      {"printf 'a\\000\\377b'", ChildEnd::exited, 0, nullptr, ""},
  };
  for (const auto& [text, end, status, output, errorOutput] : cases) {
    const auto result = runChild(script(text));
    EXPECT_EQ(result.end, end) << text;
    EXPECT_EQ(result.status, status) << text;
    EXPECT_EQ(result.output, output ? std::string(output) : std::string("a\0\377b", 4)) << text;
    EXPECT_EQ(result.errorOutput, errorOutput) << text;
    EXPECT_EQ(result.failure, "") << text;
  }
}

TEST_P(ChildProcess, ReadsMoreThanAPipeHoldsFromEitherStream) {
  constexpr std::size_t size = 10 << 20;
  const std::string out = "head -c 10485760 /dev/zero";
  const std::string err = out + " >&2";
  struct Case {
    std::string script;
    std::size_t output, errorOutput;
  };
  for (const auto& [text, output, errorOutput] :
       {Case{out, size, 0}, Case{err, 0, size}, Case{out + ";" + err, size, size}, Case{err + ";" + out, size, size},
        Case{out + "&" + err + ";wait", size, size}}) {
    const auto result = runChild(script(text));
    EXPECT_TRUE(result.succeeded()) << text << result.failure;
    EXPECT_EQ(result.output.size(), output) << text;
    EXPECT_EQ(result.errorOutput.size(), errorOutput) << text;
  }
}

TEST_P(ChildProcess, KillsAChildThatDoesNotEnd) {
  for (const auto* text : {"exec sleep 30", "trap '' TERM INT HUP; while :; do :; done", "exec >&- 2>&-; exec sleep 30",
                           "kill -STOP $$"}) {
    auto slow = script(text);
    slow.timeLimit = 100ms;
    const auto result = runChild(slow);
    EXPECT_EQ(result.end, ChildEnd::timeLimit) << text;
    EXPECT_EQ(result.status, 137) << text;
    EXPECT_EQ(result.failure, "still running after 0.1 s") << text;
    EXPECT_FALSE(result.succeeded()) << text;
  }
}

TEST_P(ChildProcess, KillsTheWholeGroupOfAChildThatWritesTooMuch) {
  auto endless = script("sleep 30 & echo $!; cat /dev/zero >&2");
  endless.outputLimit = 1 << 20;
  const auto result = runChild(endless);
  EXPECT_EQ(result.end, ChildEnd::outputLimit);
  EXPECT_EQ(result.status, 137);
  EXPECT_EQ(result.failure, "wrote more than 1048576 bytes");
  EXPECT_LT(result.errorOutput.size(), 8u << 20);
  EXPECT_TRUE(isEnded(std::stoi(result.output), SIGKILL));
  while (waitpid(-1, nullptr, 0) > 0) {  // the cat
  }
}

TEST_P(ChildProcess, DoesNotWaitForAProcessThatTheChildLeavesBehind) {
  // One is silent, one writes without end: what it wrote may be among the output, but it does not hold us up.
  for (const auto* text : {"sleep 30 & echo $!", "sleep 30 & echo $!; exit 4"}) {
    const auto result = runChild(script(text));
    EXPECT_EQ(result.end, ChildEnd::exited);
    EXPECT_EQ(result.status, std::string_view(text).ends_with("4") ? 4 : 0);
    const pid_t left = std::stoi(result.output);
    EXPECT_EQ(kill(left, SIGTERM), 0) << "it was not to be killed";
    EXPECT_TRUE(isEnded(left, SIGTERM));
  }
  const auto result = runChild(script("echo start; yes & exit 0"));
  EXPECT_TRUE(result.succeeded()) << result.failure;
  EXPECT_TRUE(result.output.starts_with("start\n"));
  EXPECT_GT(waitpid(-1, nullptr, 0), 0);  // ended by the closed pipe
}

TEST_P(ChildProcess, SaysWhyAChildCannotBeStarted) {
  const std::filesystem::path folder = testing::TempDir() + "child-" + std::to_string(getpid());
  std::filesystem::create_directories(folder);
  const auto file = [&](const char* name, const char* text, std::filesystem::perms permissions) {
    std::ofstream(folder / name) << text;
    std::filesystem::permissions(folder / name, permissions);
    return (folder / name).string();
  };
  const auto executable = std::filesystem::perms::owner_all;
  const std::pair<std::string, const char*> cases[]{
      {folder / "none", "No such file or directory"},
      {folder, "Permission denied"},
      {file("plain", "#!/bin/sh\n", std::filesystem::perms::owner_read), "Permission denied"},
      {file("nowhere", "#!/no/such/shell\n", executable), "No such file or directory"},
      {file("text", "just text\n", executable), "Exec format error"},
  };
  for (const auto& [path, failure] : cases) {
    const auto result = runChild(command(path, {}));
    EXPECT_EQ(result.end, ChildEnd::launchFailed) << path;
    EXPECT_EQ(result.failure, failure) << path;
    EXPECT_EQ(result.status, -1) << path;
  }
  std::filesystem::remove_all(folder);

  // With few descriptors left it fails at one place or another, until there are enough.
  rlimit usual{};
  getrlimit(RLIMIT_NOFILE, &usual);
  const int next = dup(0);
  close(next);
  int failures = 0;
  for (rlim_t more = 0; more < 8; ++more) {
    const rlimit few{static_cast<rlim_t>(next) + more, usual.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    const auto result = runChild(command("/bin/true", {}));
    setrlimit(RLIMIT_NOFILE, &usual);
    if (result.succeeded()) continue;
    EXPECT_EQ(result.end, ChildEnd::launchFailed) << more;
    EXPECT_EQ(result.failure, "Too many open files") << more;
    ++failures;
  }
  EXPECT_GE(failures, 4);
  EXPECT_LT(failures, 8);
}

TEST_P(ChildProcess, TakesNoLostStatusForSuccess) {
  const auto usual = std::signal(SIGCHLD, SIG_IGN);
  const auto result = runChild(script("echo done"));
  auto slow = command("/bin/sleep", {"30"});
  slow.timeLimit = 100ms;
  const auto killed = runChild(slow);
  std::signal(SIGCHLD, usual);
  EXPECT_EQ(result.end, ChildEnd::statusLost);
  EXPECT_FALSE(result.succeeded());
  EXPECT_EQ(result.output, "done\n");
  EXPECT_NE(result.failure, "");
  EXPECT_EQ(killed.end, ChildEnd::timeLimit);
}

TEST_P(ChildProcess, StartsTheChildWithACleanSlate) {
  // Neither end is marked as close-on-exec.
  int inherited[2];
  ASSERT_EQ(pipe(inherited), 0);
  sigset_t some;
  sigset_t before;
  sigemptyset(&some);
  sigaddset(&some, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &some, &before);
  const auto usual = std::signal(SIGPIPE, SIG_IGN);
  const auto status = runChild(command("/bin/cat", {"/proc/self/status"})).output;
  const auto identity = runChild(command("/bin/cat", {"/proc/self/stat"})).output;
  const auto input = runChild(command("/usr/bin/readlink", {"/proc/self/fd/0"})).output;
  const auto descriptors = runChild(command("/bin/ls", {"/proc/self/fd"})).output;
  std::signal(SIGPIPE, usual);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  close(inherited[0]);
  close(inherited[1]);

  for (const auto* name : {"SigBlk:\t", "SigIgn:\t"}) {
    const auto at = status.find(name);
    ASSERT_NE(at, std::string::npos);
    // Signals 32 and 33 are the C library's own.
    EXPECT_EQ(std::stoull(status.substr(at + 8, 16), nullptr, 16) & ~0x180000000ull, 0u) << name;
  }
  int pid = 0;
  int parent = 0;
  int group = 0;
  ASSERT_EQ(std::sscanf(identity.c_str(), "%d (cat) %*c %d %d", &pid, &parent, &group), 3);
  EXPECT_EQ(parent, getpid());
  EXPECT_EQ(group, pid);
  EXPECT_EQ(input, "/dev/null\n");
  EXPECT_EQ(descriptors, "0\n1\n2\n3\n") << "3 is the folder that it lists";
}

TEST_P(ChildProcess, WorksWithoutStandardStreamsOfItsOwn) {
  int saved[3];
  for (int stream = 0; stream < 3; ++stream) {
    saved[stream] = fcntl(stream, F_DUPFD_CLOEXEC, 10);
    close(stream);
  }
  const auto result = runChild(script("cat; echo out; echo err >&2"));
  for (int stream = 0; stream < 3; ++stream) {
    dup2(saved[stream], stream);
    close(saved[stream]);
  }
  EXPECT_TRUE(result.succeeded()) << result.failure;
  EXPECT_EQ(result.output, "out\n");
  EXPECT_EQ(result.errorOutput, "err\n");
}

TEST_P(ChildProcess, RunsSeveralAtOnce) {
  std::vector<std::thread> threads;
  std::vector<ChildResult> results(8);
  for (std::size_t n = 0; n < results.size(); ++n) {
    threads.emplace_back([&, n, ask = script("echo " + std::to_string(n) + "; exit " + std::to_string(n))] {
      for (int round = 0; round < 5; ++round) results[n] = runChild(ask);
    });
  }
  for (auto& thread : threads) thread.join();
  for (std::size_t n = 0; n < results.size(); ++n) {
    EXPECT_EQ(results[n].output, std::to_string(n) + "\n");
    EXPECT_EQ(results[n].status, static_cast<int>(n));
  }
}

}  // namespace
}  // namespace tessaspaces
