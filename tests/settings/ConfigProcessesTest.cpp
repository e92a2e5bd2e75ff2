#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <thread>

#include "settings/ConfigFile.h"
#include "settings/Fakes.h"

// What holds when a process dies in the middle of a write, and when several write at once.

namespace tessaspaces {
namespace {

using namespace tessaspaces::testing;
using ::testing::ElementsAre;
using Json = nlohmann::json;

/// Runs `work` in a child process, which ends with it.
template <class Work>
pid_t spawn(const Work& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    work();
    ::_exit(0);
  }
  return child;
}

int waitFor(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return status;
}

TEST(ConfigProcessesTest, AKillLeavesOneWholeFile) {
  struct Case {
    ReplaceStage stage;
    int expected;
  };
  const Case cases[] = {
      {ReplaceStage::created, 1}, {ReplaceStage::written, 1}, {ReplaceStage::synced, 1}, {ReplaceStage::replaced, 2}};
  for (const auto& [stage, expected] : cases) {
    TemporaryFolder folder;
    ConfigFile(folder.path(), {}).set("a", ConfigValue(1LL));
    const auto status = waitFor(spawn([&, stage = stage] {
      const auto killer = [stage](ReplaceStage reached) {
        if (reached == stage) ::raise(SIGKILL);
      };
      ConfigFile(folder.path(), {}, killer).set("a", ConfigValue(2LL));
    }));
    ASSERT_TRUE(WIFSIGNALED(status)) << static_cast<int>(stage);
    EXPECT_EQ(ConfigFile(folder.path(), {}).integer("a"), expected) << static_cast<int>(stage);

    // What the dead process left does no harm and is cleared away.
    ConfigFile(folder.path(), {}).set("b", ConfigValue(3LL));
    EXPECT_EQ(Json::parse(readText(folder / "config.json")), (Json{{"a", expected}, {"b", 3}}));
    EXPECT_THAT(folder.names(), ElementsAre("config.json"));
  }
}

TEST(ConfigProcessesTest, NoProcessLosesAnothersKeys) {
  constexpr int processes = 3;
  constexpr int changes = 60;
  TemporaryFolder folder;
  std::vector<pid_t> children;
  for (int process = 0; process < processes; ++process) {
    children.push_back(spawn([&] {
      ConfigFile store(folder.path(), {});
      for (long long change = 0; change < changes; ++change) {
        store.set(std::to_string(process) + "." + std::to_string(change), ConfigValue(change));
      }
    }));
  }
  for (const auto child : children) EXPECT_EQ(waitFor(child), 0);
  EXPECT_EQ(ConfigFile(folder.path(), {}).keys().size(), static_cast<std::size_t>(processes * changes));
  EXPECT_THAT(folder.names(), ElementsAre("config.json"));
}

TEST(ConfigProcessesTest, AllAgreeOnATextMadeOnDemand) {
  TemporaryFolder folder;
  std::vector<pid_t> children;
  for (int process = 0; process < 4; ++process) {
    children.push_back(spawn([&] {
      const auto text = ConfigFile(folder.path(), {}).stringOrStore("id", std::to_string(process));
      writeText(folder.path() / ("got" + std::to_string(process)), text);
    }));
  }
  for (const auto child : children) EXPECT_EQ(waitFor(child), 0);
  const auto stored = ConfigFile(folder.path(), {}).string("id");
  for (int process = 0; process < 4; ++process) {
    EXPECT_EQ(readText(folder.path() / ("got" + std::to_string(process))), stored);
  }
}

TEST(ConfigProcessesTest, ThreadsShareOneStore) {
  constexpr int threadCount = 4;
  constexpr long long changes = 25;
  TemporaryFolder folder;
  // The sink reads the store, as the log does: it must not run under the store's lock.
  ConfigFile* shared = nullptr;
  ConfigFile store(folder.path(), [&](const std::string&, LogLevel) { (void)shared->integer("level"); });
  shared = &store;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread) {
    threads.emplace_back([&store, &folder, thread] {
      for (long long change = 0; change < changes; ++change) {
        const auto key = std::to_string(thread) + "." + std::to_string(change);
        store.set(key, ConfigValue(change));
        EXPECT_EQ(store.integer(key), change);
        (void)store.reloadIfChanged();
        if (thread == 0 && change == changes / 2) {
          writeText(folder / "config.json", "{ spoiled");  // makes lines to log
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(store.keys().size(), static_cast<std::size_t>(threadCount * changes));
}

}  // namespace
}  // namespace tessaspaces
