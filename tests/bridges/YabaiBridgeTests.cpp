#include <gmock/gmock.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "bridges/SpaceList.h"
#include "bridges/YabaiBridge.h"
#include "support/CoreTest.h"
#include "support/YabaiClient.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using YabaiBridge::FocusResult;

constexpr const char* threeSpaces = R"([{"id": 11, "index": 1, "has-focus": false, "windows": [5, 6]},
  {"id": 12, "index": 2, "has-focus": true, "windows": []}, {"id": 13, "index": 3, "has-focus": false}])";

class YabaiBridgeTest : public CoreTest {
 protected:
  YabaiBridgeTest() { start("left 960x1080 | A* B"); }

  [[nodiscard]] std::string first() const { return client_.first(); }
  [[nodiscard]] std::string second() const { return client_.second(); }
  [[nodiscard]] std::string client() const { return client_.script(); }
  static void putFile(const std::string& path, std::string_view text, bool executable = true) {
    YabaiClient::putFile(path, text, executable);
  }
  void install() const { client_.install(); }
  void on(const std::string& arguments, std::string_view commands) const { client_.on(arguments, commands); }
  void answerQuery(std::string_view json) const { client_.answerQuery(json); }
  std::vector<YabaiClient::Arguments> takeCalls() const { return client_.takeCalls(); }

  YabaiClient client_{folder};
  const YabaiClient::Arguments query = YabaiClient::query;
  const YabaiClient::Arguments probe = YabaiClient::probe;
};

TEST_F(YabaiBridgeTest, FindsTheFirstExecutableCandidate) {
  EXPECT_FALSE(YabaiBridge::isInstalled());
  EXPECT_EQ(YabaiBridge::binaryPath(), second());
  install();
  EXPECT_TRUE(YabaiBridge::isInstalled());
  EXPECT_EQ(YabaiBridge::binaryPath(), second());
  // Neither a plain file nor a folder is an executable file.
  putFile(first(), "#!/bin/sh\n", false);
  EXPECT_EQ(YabaiBridge::binaryPath(), second());
  std::filesystem::remove(first());
  std::filesystem::create_directory(first());
  EXPECT_EQ(YabaiBridge::binaryPath(), second());
  std::filesystem::remove(first());
  std::filesystem::create_symlink(second(), first());
  EXPECT_EQ(YabaiBridge::binaryPath(), first());

  YabaiBridge::forgetEverything();
  EXPECT_THAT(YabaiBridge::candidatePaths(), ElementsAre("/opt/homebrew/bin/yabai", "/usr/local/bin/yabai"));
}

TEST_F(YabaiBridgeTest, IsSilentWhenNotInstalled) {
  EXPECT_FALSE(YabaiBridge::isAvailable());
  EXPECT_FALSE(YabaiBridge::destroySpace(1));
  EXPECT_FALSE(YabaiBridge::createSpace());
  EXPECT_EQ(YabaiBridge::spaceCount(), std::nullopt);
  EXPECT_EQ(YabaiBridge::windowCount(1), std::nullopt);
  EXPECT_THAT(takeLog(), IsEmpty());
  EXPECT_EQ(YabaiBridge::focusSpace(11), FocusResult::failed);
  EXPECT_FALSE(YabaiBridge::moveWindow(5, 11));
  EXPECT_THAT(takeLog(), ElementsAre("[DEBUG] YABAI: query --spaces failed", "[DEBUG] YABAI: query --spaces failed"));
}

TEST_F(YabaiBridgeTest, RunsTheClientWithItsArgumentsAsAList) {
  install();
  answerQuery(threeSpaces);
  EXPECT_EQ(YabaiBridge::focusedSpaceID(), 12u);
  EXPECT_EQ(YabaiBridge::index(13), 3);
  EXPECT_EQ(YabaiBridge::index(14), std::nullopt);
  EXPECT_EQ(YabaiBridge::spaceCount(), 3);
  EXPECT_EQ(YabaiBridge::windowCount(1), 2);
  EXPECT_EQ(YabaiBridge::windowCount(3), std::nullopt);
  EXPECT_THAT(takeCalls(), ElementsAre(query, query, query, query, query, query));

  using List = std::vector<std::string>;
  EXPECT_EQ(YabaiBridge::focusSpace(13), FocusResult::switched);
  EXPECT_THAT(takeCalls(), ElementsAre(query, List{"-m", "space", "--focus", "3"}));
  EXPECT_EQ(YabaiBridge::focusSpace(12), FocusResult::alreadyThere);
  EXPECT_THAT(takeCalls(), ElementsAre(query));
  EXPECT_TRUE(YabaiBridge::moveWindow(4294967295, 11));
  EXPECT_THAT(takeCalls(), ElementsAre(query, List{"-m", "window", "4294967295", "--space", "1"}));
  EXPECT_TRUE(YabaiBridge::moveFocusedWindow(13));
  EXPECT_THAT(takeCalls(), ElementsAre(query, List{"-m", "window", "--space", "3"}));
  EXPECT_TRUE(YabaiBridge::destroySpace(2));
  EXPECT_THAT(takeCalls(), ElementsAre(List{"-m", "space", "2", "--destroy"}));
  EXPECT_THAT(takeLog(), IsEmpty());

  EXPECT_FALSE(YabaiBridge::moveWindow(5, 99));
  EXPECT_FALSE(YabaiBridge::moveFocusedWindow(99));
  EXPECT_EQ(YabaiBridge::focusSpace(99), FocusResult::failed);
  EXPECT_THAT(takeCalls(), ElementsAre(query, query, query));
  EXPECT_THAT(takeLog(), ElementsAre("[WARNING] YABAI: space 99 not found in yabai's list"));

  on("-m space 2 --destroy", "echo acting on the last space >&2; exit 1");
  EXPECT_FALSE(YabaiBridge::destroySpace(2));
  EXPECT_THAT(takeLog(),
              ElementsAre("[ERROR] YABAI: command '-m space 2 --destroy' failed (1): acting on the last space"));
}

TEST_F(YabaiBridgeTest, TellsApartWhyFocusingFailed) {
  install();
  answerQuery(threeSpaces);
  const std::string failed = "YABAI: command '-m space --focus 3' failed ";
  struct Case {
    const char* commands;
    FocusResult result;
    std::vector<std::string> log;
  };
  const std::vector<Case> cases{
      {"printf '\\n cannot focus: space is Already Focused.\\n\\n' >&2; exit 1",
       FocusResult::alreadyThere,
       {"[DEBUG] " + failed + "(1): cannot focus: space is Already Focused.",
        "[DEBUG] YABAI: space 13 (index 3) is already focused — treating as success"}},
      {"echo MISSION-control is active >&2; exit 2",
       FocusResult::missionControlActive,
       {"[WARNING] " + failed + "(2): MISSION-control is active"}},
      {"echo no such space >&2; exit 1", FocusResult::failed, {"[ERROR] " + failed + "(1): no such space"}},
      {"printf 'already focused\\377' >&2; exit 1", FocusResult::failed, {"[ERROR] " + failed + "(1): "}},
      {"kill -SEGV $$", FocusResult::failed, {"[ERROR] " + failed + "(139): "}},
      // Only the exit status counts.
      {"echo already focused >&2; printf '\\377'", FocusResult::switched, {}},
  };
  for (const auto& [commands, result, log] : cases) {
    on("-m space --focus 3", commands);
    EXPECT_EQ(YabaiBridge::focusSpace(13), result) << commands;
    EXPECT_EQ(takeLog(), log) << commands;
  }
}

TEST_F(YabaiBridgeTest, ReportsALostConnectionOnce) {
  install();
  const auto fail = [&] {
    on("-m space 1 --destroy", "echo yabai-msg: Failed to connect to socket.. >&2; exit 1");
    EXPECT_FALSE(YabaiBridge::destroySpace(1));
    return takeLog().at(0);
  };
  const std::string line = "YABAI: command '-m space 1 --destroy' failed (1): yabai-msg: Failed to connect to socket..";
  for (int outage = 0; outage < 2; ++outage) {
    EXPECT_EQ(fail(), "[WARNING] " + line);
    EXPECT_EQ(fail(), "[DEBUG] " + line);
    EXPECT_EQ(fail(), "[DEBUG] " + line);
    EXPECT_TRUE(YabaiBridge::destroySpace(2));
  }
}

TEST_F(YabaiBridgeTest, AsksOnceInFiveSecondsWhetherYabaiAnswers) {
  install();
  EXPECT_TRUE(YabaiBridge::isAvailable()) << "an empty reply is a reply";
  sim->time().advance(4999ms);
  EXPECT_TRUE(YabaiBridge::isAvailable());
  EXPECT_THAT(takeCalls(), ElementsAre(probe));
  sim->time().advance(1ms);
  EXPECT_TRUE(YabaiBridge::isAvailable());
  EXPECT_THAT(takeCalls(), ElementsAre(probe));

  // A failed command makes it ask again, a failed question does not.
  on("-m space 1 --destroy", "exit 1");
  EXPECT_FALSE(YabaiBridge::destroySpace(1));
  takeCalls();
  on("-m query --windows", "exit 1");
  EXPECT_FALSE(YabaiBridge::isAvailable());
  EXPECT_FALSE(YabaiBridge::isAvailable());
  EXPECT_THAT(takeCalls(), ElementsAre(probe));

  sim->time().advance(5s);
  on("-m query --windows", "printf '\\377'");
  EXPECT_FALSE(YabaiBridge::isAvailable());
  sim->time().advance(5s);
  on("-m query --windows", "head -c 10485760 /dev/zero | tr '\\0' x; head -c 10485760 /dev/zero | tr '\\0' x >&2");
  EXPECT_TRUE(YabaiBridge::isAvailable());

  // So does one that cannot be started, and one that is removed is not missed before the five seconds are over.
  std::filesystem::remove(second());
  EXPECT_TRUE(YabaiBridge::isAvailable());
  putFile(second(), "#!/no/such/shell\n");
  takeLog();
  EXPECT_FALSE(YabaiBridge::destroySpace(1));
  EXPECT_THAT(takeLog(), ElementsAre("[WARNING] YABAI: unable to launch " + second() + ": No such file or directory"));
  install();
  on("-m query --windows", "");
  EXPECT_TRUE(YabaiBridge::isAvailable());
  takeCalls();
  putFile(second(), client() + "exit 9\n");
  EXPECT_FALSE(YabaiBridge::destroySpace(2));
  EXPECT_FALSE(YabaiBridge::isAvailable());
}

TEST_F(YabaiBridgeTest, CountsAfterCreating) {
  install();
  const std::string before = R"([{"id":1},{"id":2},{"id":3},{"id":4}])";
  const std::string complaint =
      "[ERROR] YABAI: 'space --create' reported success but space count didn't increase (before=";
  const auto becomes = [](const std::string& reply) {
    return "echo 'echo \"" + reply + "\"' > 'on -m query --spaces'";
  };
  struct Case {
    std::string before;
    std::string create;
    bool created;
    std::vector<std::string> log;
  };
  const std::vector<Case> cases{
      {"echo '" + before + "'", becomes("[1,2,3,4,5]"), true, {}},
      {"echo '" + before + "'", becomes("[1,2,3,4,5,6]"), false, {complaint + "4, after=6)"}},
      {"echo '" + before + "'", "", false, {complaint + "4, after=4)"}},
      {"echo '" + before + "'", becomes("{}"), false, {complaint + "4, after=?)"}},
      {"echo '" + before + "'",
       "echo 'exit 7' > 'on -m query --spaces'",
       false,
       {"[ERROR] YABAI: command '-m query --spaces' failed (7): ", complaint + "4, after=?)"}},
      {"echo nonsense", becomes("[1]"), false, {complaint + "?, after=1)"}},
      {"echo '" + before + "'",
       "echo no >&2; exit 1",
       false,
       {"[ERROR] YABAI: command '-m space --create' failed (1): no"}},
  };
  for (const auto& [reply, create, created, log] : cases) {
    on("-m query --spaces", reply);
    on("-m space --create", create);
    EXPECT_EQ(YabaiBridge::createSpace(), created) << create;
    EXPECT_EQ(takeLog(), log) << create;
  }
}

TEST_F(YabaiBridgeTest, SurvivesAClientThatDoesNotAnswer) {
  install();
  YabaiBridge::useTimeLimit(100ms);
  on("-m query --windows", "sleep 30");
  EXPECT_FALSE(YabaiBridge::isAvailable());
  EXPECT_THAT(takeLog(),
              ElementsAre("[ERROR] YABAI: command '-m query --windows' failed (137): still running after 0.1 s"));
}

TEST_F(YabaiBridgeTest, MayBeCalledFromAnyThread) {
  install();
  answerQuery(threeSpaces);
  on("-m space --focus 3", "echo failed to connect to socket >&2; exit 1");
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int n = 0; n < 6; ++n) {
    threads.emplace_back([&, n] {
      for (int round = 0; round < 4; ++round) {
        if (n % 2 == 0) wrong += YabaiBridge::focusSpace(13) == FocusResult::failed ? 0 : 1;
        wrong += YabaiBridge::isAvailable() && YabaiBridge::moveFocusedWindow(11) ? 0 : 1;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

TEST(SpaceListTest, ReadsTheReplyToTheSpacesQuery) {
  struct Case {
    std::string reply;
    bool readable;
    std::vector<std::pair<SpaceID, std::int64_t>> indices;
    std::optional<SpaceID> focused;
  };
  const std::vector<Case> cases{
      {threeSpaces, true, {{11, 1}, {12, 2}, {13, 3}}, 12},
      {"[]", true, {}, {}},
      {R"([{"id":1,"index":1,"has-focus":true},{"id":2,"has-focus":1},{"index":3,"has-focus":true}])",
       true,
       {{1, 1}},
       2},
      {R"([{"id":1,"index":1,"has-focus":"true"},{"id":1,"index":4,"has-focus":0},{"id":2,"index":"2"}])",
       true,
       {{1, 4}},
       {}},
      // Numbers that are not plain.
      {R"([{"id":1e3,"index":2.9},{"id":18446744073709551615,"index":-1},{"id":7,"index":1e30,"has-focus":0.5}])",
       true,
       {{1000, 2}, {18446744073709551615u, -1}},
       7},
      {R"([{"id":-1,"index":1},{"id":1e30,"index":2},{"id":true,"index":3},{"id":"4","index":4},{"id":null}])",
       true,
       {},
       {}},
      {R"([{"id":1e400,"index":1}])", false, {}, {}},
      {R"([{"id":NaN,"index":1}])", false, {}, {}},
      {"", false, {}, {}},
      {"{}", false, {}, {}},
      {"[{}, 1]", false, {}, {}},
      {R"([{"id":1,"index":1}] and more)", false, {}, {}},
      {"[{\"id\":1,\"label\":\"\377\"}]", false, {}, {}},
  };
  for (const auto& [reply, readable, indices, focused] : cases) {
    const auto list = SpaceList::parse(reply);
    ASSERT_EQ(list.has_value(), readable) << reply;
    if (!list) continue;
    EXPECT_EQ(list->focusedID, focused) << reply;
    EXPECT_EQ(list->indexByID.size(), indices.size()) << reply;
    for (const auto& [id, index] : indices) EXPECT_EQ(list->index(id), index) << reply;
  }
}

TEST(SpaceListTest, CountsSpacesAndWindows) {
  EXPECT_EQ(SpaceList::countSpaces("[1, {}, null]"), 3);
  for (const auto* reply : {"", "{}", "[1", "3"}) EXPECT_EQ(SpaceList::countSpaces(reply), std::nullopt) << reply;

  const auto* reply = R"([{"windows":[9]},{"index":1,"windows":[1,2]},{"index":1,"windows":[]},{"index":2.0,
    "windows":{}},{"index":2,"windows":[1]},{"index":3}])";
  EXPECT_EQ(SpaceList::countWindows(reply, 1), 2);
  for (const auto index : {2, 3, 4}) EXPECT_EQ(SpaceList::countWindows(reply, index), std::nullopt) << index;
  EXPECT_EQ(SpaceList::countWindows(R"([{"index":1,"windows":[]}, 4])", 1), std::nullopt);
}

TEST(SpaceListTest, IsNotBroughtDownByDepth) {
  constexpr int depth = 100'000;
  const auto nested = std::string(depth, '[') + std::string(depth, ']');
  EXPECT_EQ(SpaceList::countSpaces(nested), 1);
  EXPECT_EQ(SpaceList::countSpaces(nested.substr(1)), std::nullopt);
  const auto list = SpaceList::parse(R"([{"id":1,"index":1,"windows":)" + nested + "}]");
  ASSERT_TRUE(list);
  EXPECT_EQ(list->index(1), 1);
}

}  // namespace
}  // namespace tessaspaces
