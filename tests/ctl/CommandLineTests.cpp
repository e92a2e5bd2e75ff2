#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "ctl/Commands.h"
#include "model/Snapshot.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Outcome {
  int code = 0;
  std::string out;
  std::string err;
};

class CommandLine : public CoreTest {
 protected:
  Outcome call(std::vector<std::string> arguments) {
    std::ostringstream out, err;
    const auto code = ctl::run(ctl::parseArguments(arguments).request, out, err);
    return {static_cast<int>(code), out.str(), err.str()};
  }
};

TEST_F(CommandLine, WordsThatMakeNoCommandAreUsageErrors) {
  const std::vector<std::string> cases[] = {{},
                                            {"fly"},
                                            {"switch"},
                                            {"switch", "north"},
                                            {"switch", "3x"},
                                            {"switch", "99999999999999"},
                                            {"switch", "left", "right"},
                                            {"move"},
                                            {"move", "3"},
                                            {"add-desktop", "2"},
                                            {"remove-desktop"},
                                            {"remove-desktop", "last"},
                                            {"remove-desktop", "1", "2"},
                                            {"list", "--xml"},
                                            {"config"},
                                            {"config", "get"},
                                            {"config", "set", "logLevel"},
                                            {"--colour", "list"},
                                            {"--platform"},
                                            {"selftest", "now"},
                                            {"config", "list", "all"}};
  for (const auto& words : cases) {
    const auto outcome = call(words);
    EXPECT_EQ(outcome.code, 2) << testing::PrintToString(words);
    EXPECT_THAT(outcome.err, StartsWith("tessactl: "));
    EXPECT_THAT(outcome.out, IsEmpty());
  }
  EXPECT_EQ(ctl::parseArguments({"--platform", "simulated", "list"}).platform, "simulated");
  EXPECT_EQ(call({"--help"}).code, 0);
  EXPECT_THAT(call({"switch", "--help"}).out, HasSubstr("switch left|right|up|down"));
}

TEST_F(CommandLine, SwitchesAndSaysWhyNot) {
  start("left 960x1080 | A* B C");
  EXPECT_EQ(call({"switch", "right"}).code, 0);
  EXPECT_EQ(world().currentSpace("left"), 2u);
  EXPECT_EQ(call({"switch", "3"}).code, 0);
  EXPECT_EQ(world().currentSpace("left"), 3u);

  auto refused = call({"switch", "9"});
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.err, HasSubstr("this display has 3"));
  EXPECT_EQ(call({"switch", "-1"}).code, 1);
  refused = call({"switch", "down"});
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.err, HasSubstr("nothing lies below desktop 3 (tessaspaces.circulation.vertical is off)"));
  put("tessaspaces.circulation.enabled", 0);
  EXPECT_THAT(call({"switch", "right"}).err, HasSubstr("to the right of desktop 3 (tessaspaces.circulation.enabled"));

  world().editFaults([](SimulatedFaults& faults) {
    faults.refuseBridged();
    faults.ignored = {Operation::swipe, Operation::managedDisplaySetCurrentSpace};
  });
  refused = call({"switch", "1"});
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.err, HasSubstr("did not go to desktop 1"));

  world().setWindowManager(std::nullopt);
  EXPECT_EQ(call({"switch", "1"}).code, 3);
  EXPECT_EQ(call({"selftest"}).code, 0) << "needs no window manager";
}

TEST_F(CommandLine, MovesTheFocusedWindow) {
  start("left 960x1080 | A* [Editor] B");
  EXPECT_EQ(call({"move", "right"}).code, 1);
  const WindowID window = Spaces::ids(1).at(0);
  world().focusWindow(window);
  EXPECT_EQ(call({"move", "right"}).code, 0);
  EXPECT_THAT(world().spacesOf(window), testing::ElementsAre(2u));
  EXPECT_EQ(world().currentSpace("left"), 1u);
}

TEST_F(CommandLine, AddsAndRemovesDesktopsUnderThePointer) {
  start("left 960x1080 | A* ; right 960x1080 | B*");
  EXPECT_EQ(call({"add-desktop"}).code, 0);
  EXPECT_EQ(world().state()->display("left")->spaces.size(), 2u);
  EXPECT_EQ(call({"remove-desktop", "1"}).code, 0);
  EXPECT_EQ(world().currentSpace("left"), 3u);
  struct Case {
    std::vector<std::string> words;
    int code;
    std::string reason;
  };
  const Case cases[] = {{{"remove-desktop", "1"}, 1, "the last desktop cannot be removed"},
                        {{"remove-desktop", "2"}, 1, "there is no such desktop; this display has 1"},
                        {{"remove-desktop", "0"}, 1, "there is no such desktop"},
                        {{"add-desktop"}, 1, "the window manager did not add a desktop"}};
  world().editFaults([](SimulatedFaults& faults) { faults.ignored = {Operation::addSpace}; });
  for (const auto& [words, code, reason] : cases) {
    const auto refused = call(words);
    EXPECT_EQ(refused.code, code);
    EXPECT_THAT(refused.err, StartsWith("tessactl: " + reason));
  }
  world().setWindowManager(std::nullopt);
  EXPECT_EQ(call({"add-desktop"}).code, 3);
}

TEST_F(CommandLine, ListsForPeopleAndForPrograms) {
  start("left 960x1080 | Mail* [Inbox] - ; right 960x1080 | Plan*");
  world().addWindow({"caf\xe9 \"quoted\"", 9, 2});  // Latin-1 bytes must not spoil the document
  const auto listed = nlohmann::json::parse(call({"list", "--json"}).out);
  ASSERT_EQ(listed["displays"].size(), 2u);
  const auto& desktops = listed["displays"][0]["desktops"];
  EXPECT_EQ(desktops[0]["name"], "Mail");
  EXPECT_EQ(desktops[0]["current"], true);
  EXPECT_EQ(desktops[0]["windows"][0]["title"], "Inbox");
  EXPECT_EQ(desktops[1]["number"], 2);
  EXPECT_EQ(desktops[1]["windows"].size(), 1u);
  world().addWindow({"\x1b[2J cleared", 9, 1});
  const auto text = call({"list"}).out;
  EXPECT_THAT(text, HasSubstr("*  1  Mail"));
  EXPECT_THAT(text, testing::Not(HasSubstr("\x1b")));
}

TEST_F(CommandLine, SettingsAreCheckedBeforeTheyAreStored) {
  EXPECT_EQ(call({"config", "set", "tessaspaces.grid.rows", "5"}).code, 0);
  EXPECT_EQ(call({"config", "get", "grid.rows"}).out, "5\n") << "the prefix may be left out";
  EXPECT_EQ(call({"config", "set", "circulation.join", "sameRow"}).code, 0);
  EXPECT_EQ(call({"config", "get", "circulation.join"}).out, "sameRow\n");
  EXPECT_EQ(call({"config", "set", "desktopNickname.1", "B\xfcro"}).code, 0) << "stored as far as it is UTF-8";
  EXPECT_EQ(call({"config", "get", "desktopNickname.1"}).out, "B\uFFFDro\n");
  for (const auto& [key, value] : std::vector<std::pair<std::string, std::string>>{{"hotkey.0", "1"},
                                                                                   {"grid.rows", "many"},
                                                                                   {"grid.rows", "17"},
                                                                                   {"circulation.enabled", "maybe"},
                                                                                   {"hotkey.0", "-1"},
                                                                                   {"hotkey.0", "banana"},
                                                                                   {"no.such", "1"}}) {
    const auto outcome = call({"config", "set", key, value});
    EXPECT_EQ(outcome.code, 1) << key << " " << value;
    EXPECT_THAT(outcome.err, HasSubstr(key));
  }
  EXPECT_EQ(call({"config", "get", "grid.rows"}).out, "5\n");
  EXPECT_EQ(call({"config", "unset", "grid.rows"}).code, 0);
  EXPECT_EQ(call({"config", "get", "grid.rows"}).out, "3\n");
  EXPECT_THAT(call({"config", "list"}).out, HasSubstr("tessaspaces.grid.rows = 3  (default)\n"));
}

TEST_F(CommandLine, ASettingThatCouldNotBeWrittenIsAFailure) {
  std::filesystem::remove_all(folder);
  std::ofstream(folder) << "a file where the folder should be";
  const auto outcome = call({"config", "set", "grid.rows", "5"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_THAT(outcome.err, HasSubstr("could not be written"));
}

}  // namespace
}  // namespace tessaspaces
