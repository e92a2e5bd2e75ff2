#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "bridges/DesktopEditing.h"
#include "bridges/DisplaySpaces.h"
#include "bridges/YabaiBridge.h"
#include "settings/Settings.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using Spaces::addDesktop;
using Spaces::DesktopRemoval;
using Spaces::failureText;
using Spaces::removeDesktop;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DesktopEditing : public CoreTest {
 protected:
  DesktopEditing() { YabaiBridge::forgetEverything(); }
  ~DesktopEditing() override { YabaiBridge::forgetEverything(); }

  static std::vector<SpaceID> spaces() { return Spaces::allSpaceIDs("left"); }
  void fault(const std::function<void(SimulatedFaults&)>& change) { world().editFaults(change); }

  /// Desktops that are but their numbers, as on X11: one goes, and the others are counted anew.
  void startNumbered(int count) {
    start("left 960x1080 | -");
    world().edit([](WorldState& state) { state.displays.front().spaces.front().reported.uuid.reset(); });
    for (int i = 1; i < count; ++i) world().addSpace("left", {.name = "", .uuid = ""});
    fault([](SimulatedFaults& faults) { faults.ignored = {Operation::removeSpace}; });
    world().beforeNext(Operation::removeSpace,
                       [this, count] { world().setSpaceCount("left", static_cast<std::size_t>(count) - 1); });
  }
  static std::string nickname(int desktop) {
    return Settings::desktopNickname("space-id-" + std::to_string(desktop)).value_or("");
  }
  static std::string assigned(const char* application) {
    const auto assignment = Settings::appAssignment(application);
    if (!assignment) return "";
    if (const auto* number = std::get_if<DesktopNumber>(&*assignment)) return std::to_string(number->value);
    return std::get<DesktopIdentifier>(*assignment).value;
  }

  /// A yabai that lists the spaces and notes what else it is asked.
  void installYabai() {
    const auto path = folder / "yabai";
    std::ofstream(path) << "#!/bin/sh\ncd " << folder.string()
                        << "\n[ \"$2\" = query ] || echo \"$*\" >> calls\n"
                           "case \"$*\" in *--spaces) printf '[{\"id\": 1, \"index\": 4}, {\"id\": 2, \"index\": 5}, "
                           "{\"id\": 3, \"index\": 1, \"has-focus\": true}'\n"
                           "! grep -q create calls || printf ',{\"id\": 4, \"index\": 6}'\necho ]\nesac\n";
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    std::ofstream(folder / "calls").flush();
    YabaiBridge::useCandidatePaths({path, path});
  }
  [[nodiscard]] std::string yabaiCalls() const {
    std::ostringstream text;
    text << std::ifstream(folder / "calls").rdbuf();
    return text.str();
  }
};

TEST_F(DesktopEditing, AddsOneAndSaysWhich) {
  start("left 960x1080 | A* Film! B ; right 960x1080 | C*");
  EXPECT_EQ(addDesktop("left"), 5U);
  EXPECT_THAT(spaces(), ElementsAre(1, 2, 3, 5));
  EXPECT_THAT(takeLog(), testing::Contains("[INFO] MCSPACES: added desktop 5 to display left"));

  fault([](SimulatedFaults& faults) { faults.delayed[Operation::addSpace] = 900ms; });
  EXPECT_EQ(addDesktop("right"), 6U) << "it only takes its time";
}

TEST_F(DesktopEditing, AnAdditionThatCannotBeSeenIsNone) {
  const std::string prefix = "[WARNING] MCSPACES: no desktop added to display left: ";
  struct Case {
    const char* name;
    std::function<void()> given;
    std::string reason;
    Duration longest;
  };
  const Case cases[] = {
      {"ignored", [&] { fault([](SimulatedFaults& faults) { faults.ignored = {Operation::addSpace}; }); },
       "the window manager did not add one (before=2, after=2)", 1020ms},
      {"too late", [&] { fault([](SimulatedFaults& faults) { faults.delayed[Operation::addSpace] = 2s; }); },
       "the window manager did not add one (before=2, after=2)", 1020ms},
      {"not offered", [&] { fault([](SimulatedFaults& faults) { faults.unavailable = {Operation::addSpace}; }); },
       "the window manager does not let desktops be added", 0ms},
      {"somebody else adds one too",
       [&] { world().beforeNext(Operation::addSpace, [&] { world().addSpace("left"); }); },
       "the window manager did not add one (before=2, after=4)", 1020ms},
      {"no window manager", [&] { world().setWindowManager(std::nullopt); }, "there is no such display", 0ms},
  };
  for (const auto& [name, given, reason, longest] : cases) {
    SCOPED_TRACE(name);
    start("left 960x1080 | A* B");
    given();
    const auto begin = sim->time().now();
    EXPECT_EQ(addDesktop("left"), std::nullopt);
    EXPECT_LE(sim->time().now() - begin, longest);
    EXPECT_THAT(takeLog(), ElementsAre(prefix + reason));
  }
}

TEST_F(DesktopEditing, RemovesOneAndItsWindowsStayWithinReach) {
  start("left 960x1080 | A B* [Editor] Film! C");
  const auto window = world().state()->windows.front().id;
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::removeSpace] = 300ms; });
  EXPECT_EQ(removeDesktop("left", 2), DesktopRemoval::removed);
  EXPECT_THAT(spaces(), ElementsAre(1, 3, 4));
  EXPECT_THAT(world().spacesOf(window), ElementsAre(1));
  EXPECT_EQ(failureText(DesktopRemoval::removed), std::nullopt);
  EXPECT_THAT(takeLog(), ElementsAre("[INFO] MCSPACES: removed desktop 2 of display left"));
}

TEST_F(DesktopEditing, WhatMayNotGoIsNotAskedFor) {
  start("left 960x1080 | A* Film! ; right 960x1080 | B* C");
  struct Case {
    const char* display;
    SpaceID space;
    DesktopRemoval outcome;
  };
  const Case cases[] = {{"left", 1, DesktopRemoval::lastDesktop},   {"left", 2, DesktopRemoval::fullScreenSpace},
                        {"left", 3, DesktopRemoval::noSuchDesktop}, {"left", 99, DesktopRemoval::noSuchDesktop},
                        {"none", 1, DesktopRemoval::noSuchDesktop}, {"right", 0, DesktopRemoval::noSuchDesktop}};
  for (const auto& [display, space, outcome] : cases) {
    EXPECT_EQ(removeDesktop(display, space), outcome) << display << space;
    ASSERT_TRUE(failureText(outcome).has_value());
    EXPECT_THAT(takeLog(), ElementsAre(HasSubstr("not removed: " + std::string(*failureText(outcome)))));
  }
  EXPECT_FALSE(world().asked(Operation::removeSpace));
}

TEST_F(DesktopEditing, ARemovalThatCannotBeSeenIsNone) {
  struct Case {
    const char* name;
    std::function<void()> given;
    DesktopRemoval outcome;
  };
  const Case cases[] = {
      {"ignored", [&] { fault([](SimulatedFaults& faults) { faults.ignored = {Operation::removeSpace}; }); },
       DesktopRemoval::notRemoved},
      {"not offered", [&] { fault([](SimulatedFaults& faults) { faults.unavailable = {Operation::removeSpace}; }); },
       DesktopRemoval::unsupported},
      {"another one goes",
       [&] {
         fault([](SimulatedFaults& faults) { faults.ignored = {Operation::removeSpace}; });
         world().beforeNext(Operation::removeSpace, [&] { world().removeSpace(3); });
       },
       DesktopRemoval::notRemoved},
      {"one comes as it goes", [&] { world().beforeNext(Operation::removeSpace, [&] { world().addSpace("left"); }); },
       DesktopRemoval::notRemoved},
  };
  for (const auto& [name, given, outcome] : cases) {
    SCOPED_TRACE(name);
    start("left 960x1080 | A* B C");
    Settings::setDesktopNickname("kept", "UUID-2");
    given();
    EXPECT_EQ(removeDesktop("left", 2), outcome);
    EXPECT_EQ(Settings::desktopNickname("UUID-2"), "kept");
  }
}

TEST_F(DesktopEditing, NamesMoveAlongWithDesktopsThatAreNumbers) {
  startNumbered(4);
  for (const int desktop : {1, 2, 4}) {
    Settings::setDesktopNickname("name " + std::to_string(desktop), "space-id-" + std::to_string(desktop));
  }
  Settings::setAppAssignment("space-id-1", "first");
  Settings::setAppAssignment("space-id-2", "second");
  Settings::setAppAssignment("space-id-4", "fourth");
  Settings::setAppAssignment("elsewhere", "other");
  put("tessaspaces.app.counted", 4);
  EXPECT_EQ(removeDesktop("left", 2), DesktopRemoval::removed);
  EXPECT_EQ(nickname(1), "name 1");
  EXPECT_EQ(nickname(2), "") << "the third had none";
  EXPECT_EQ(nickname(3), "name 4");
  EXPECT_EQ(nickname(4), "");
  EXPECT_EQ(assigned("first"), "space-id-1");
  EXPECT_EQ(assigned("second"), "");
  EXPECT_EQ(assigned("fourth"), "space-id-3");
  EXPECT_EQ(assigned("other"), "elsewhere");
  EXPECT_EQ(assigned("counted"), "4") << "a position is a position";

  startNumbered(3);
  Settings::setDesktopNickname("last", "space-id-3");
  EXPECT_EQ(removeDesktop("left", 3), DesktopRemoval::removed);
  EXPECT_EQ(nickname(3), "") << "nothing for the next third desktop to inherit";
  EXPECT_EQ(nickname(1), "name 1");
}

TEST_F(DesktopEditing, OlderSystemsAskYabai) {
  const auto withoutNative = [&](OperatingSystemVersion version) {
    start("left 960x1080 | A* B ; right 960x1080 | C*", version);
    fault([](SimulatedFaults& faults) { faults.unavailable = {Operation::addSpace, Operation::removeSpace}; });
    installYabai();
  };
  withoutNative({26, 4});
  sim->time().outside(50ms, [&] { world().addSpace("left"); });
  EXPECT_EQ(addDesktop("left"), 4U);
  EXPECT_EQ(yabaiCalls(), "-m space --focus 4\n-m space --create\n") << "it adds where the focus is";

  withoutNative({26, 4});
  sim->time().outside(50ms, [&] { world().removeSpace(2); });
  EXPECT_EQ(removeDesktop("left", 2), DesktopRemoval::removed);
  EXPECT_EQ(yabaiCalls(), "-m space 5 --destroy\n");

  withoutNative({27, 0});
  EXPECT_EQ(addDesktop("left"), std::nullopt);
  EXPECT_EQ(removeDesktop("left", 2), DesktopRemoval::unsupported);
  EXPECT_EQ(yabaiCalls(), "");
}

TEST_F(DesktopEditing, OneChangeAtATime) {
  start("left 960x1080 | A* B C");
  std::optional<DesktopRemoval> meanwhile;
  world().beforeNext(Operation::addSpace, [&] { meanwhile = removeDesktop("left", 2); });
  EXPECT_EQ(addDesktop("left"), 4U);
  EXPECT_EQ(meanwhile, DesktopRemoval::anotherIsUnderWay);
  EXPECT_EQ(removeDesktop("left", 2), DesktopRemoval::removed) << "the turn is given back";
}

}  // namespace
}  // namespace tessaspaces
