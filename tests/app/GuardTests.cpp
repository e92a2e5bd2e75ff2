#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "app/SingleInstanceGuard.h"

namespace tessaspaces {
namespace {

/// The guard's lock is the whole process's, so each case is a process of its own.
bool inProcess(const std::function<bool()>& holds) {
  const pid_t child = fork();
  if (child == 0) _exit(holds() ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void setEnvironment(const char* name, const char* value) {
  if (value != nullptr) {
    setenv(name, value, 1);
  } else {
    unsetenv(name);
  }
}

TEST(SingleInstanceGuard, TheLockLiesInTheUsersTemporaryFolder) {
  struct Case {
    const char* tmpdir;
    const char* runtime;
    const char* path;
  };
  const Case cases[] = {
      {"/a", "/b", "/a/local.tessaspaces.instance.lock"},
      {"/a/", nullptr, "/a/local.tessaspaces.instance.lock"},
      {nullptr, "/b", "/b/local.tessaspaces.instance.lock"},
      {"", "/b", "/b/local.tessaspaces.instance.lock"},
      {nullptr, nullptr, "/tmp/local.tessaspaces.instance.lock"},
  };
  for (const Case& c : cases) {
    EXPECT_TRUE(inProcess([&] {
      setEnvironment("TMPDIR", c.tmpdir);
      setEnvironment("XDG_RUNTIME_DIR", c.runtime);
      return SingleInstanceGuard::lockPath() == c.path;
    })) << c.path;
  }
}

TEST(SingleInstanceGuard, OneProcessHoldsTheLock) {
  std::string folder = testing::TempDir() + "guard-XXXXXX";
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  const std::string path = folder + "/local.tessaspaces.instance.lock";
  const auto acquire = [&] {
    setenv("TMPDIR", folder.c_str(), 1);
    return SingleInstanceGuard::acquire();
  };

  EXPECT_TRUE(inProcess([&] { return acquire() && acquire() && std::filesystem::exists(path); }));
  EXPECT_TRUE(inProcess(acquire)) << "the lock ends with its process";
  EXPECT_TRUE(inProcess([&] {
    return acquire() && !inProcess([&] {
             const int other = open(path.c_str(), O_RDWR);
             return flock(other, LOCK_EX | LOCK_NB) == 0;
           });
  }));
  {
    const int other = open(path.c_str(), O_RDWR);
    ASSERT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
    EXPECT_FALSE(inProcess(acquire)) << "another copy runs";
    close(other);
  }
  std::filesystem::remove_all(folder);
  EXPECT_TRUE(inProcess(acquire)) << "a lock that cannot be made keeps nobody from starting";
}

}  // namespace
}  // namespace tessaspaces
