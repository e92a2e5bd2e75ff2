#include <gmock/gmock.h>

#include "model/HotkeyCommands.h"
#include "model/Snapshot.h"
#include "model/WindowMoves.h"
#include "support/CoreTest.h"
#include "support/YabaiClient.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr OperatingSystemVersion oldSystem{26, 0};
constexpr OperatingSystemVersion newSystem{27, 0};

/// Spaces 1 to 3 of the simulated world, as the client sees them.
constexpr const char* firstFocused =
    R"([{"id": 1, "index": 1, "has-focus": true}, {"id": 2, "index": 2}, {"id": 3, "index": 3}])";

const std::string start12 = "[DEBUG] SWITCH: start active=1 target=2 windowsOnTarget=1";
const std::string activating =
    "[DEBUG] SWITCH: trying to activate app 'Editor' (pid 1001) which has a window on target";
const std::string activated = "[DEBUG] SWITCH: method 'aktivace aplikace' -> active=2 target=2 OK";
const std::string notActivated = "[DEBUG] SWITCH: method 'aktivace aplikace' -> active=1 target=2 FAILED";
const std::string degraded =
    "[WARNING] SWITCH: DEGRADED via raw SLS (active=2) — windows from the previous desktop may remain visible; yabai "
    "is needed for a clean switch";
const std::string noBridge = "[WARNING] SWITCH: bridged operation unavailable, falling back to gesture";

/// What the program did to the world, in order; what it only looked at left out.
std::vector<std::string> deeds(const std::vector<std::string>& calls) {
  std::vector<std::string> done;
  for (const auto& call : calls) {
    for (const auto* deed : {"bridged", "swipe", "activate", "managedDisplaySetCurrentSpace"}) {
      if (call.starts_with(deed)) done.push_back(call);
    }
  }
  return done;
}

class Ladder : public CoreTest {
 protected:
  void SetUp() override { client.install(); }

  void open(OperatingSystemVersion version) {
    start("left 960x1080 | A* B [Editor] C", version);
    target = Spaces::enumerate().desktops.at(1);
    client.answerQuery(firstFocused);
    (void)takeLog();
    (void)client.takeCalls();
    world().clearCalls();
  }
  void fault(const std::function<void(SimulatedFaults&)>& change) { world().editFaults(change); }
  /// The client takes the command, and the display follows a little later.
  void yabaiObeys() {
    sim->time().outside(100ms, [this] { world().showSpace(2); });
  }
  void yabaiRefuses(const std::string& words) { client.on("-m space --focus 2", "echo '" + words + "' >&2; exit 1"); }

  YabaiClient client{folder};
  DesktopRef target;
};

TEST_F(Ladder, OnNewSystemsEachRungIsTriedInTurn) {
  struct Case {
    std::string method;
    std::function<void(SimulatedFaults&)> faults;
    std::vector<std::string> log;
    std::vector<std::string> deeds;
  };
  const std::vector<std::string> bridged{"bridgedShowSpaces([2])", "bridgedSetCurrentSpace(left, 2)",
                                         "bridgedHideSpaces([1, 3])"};
  const auto noSwipe = [](SimulatedFaults& faults) {
    faults.refuseBridged();
    faults.unanswered.insert(Operation::createEvent);
  };
  const std::string step = "[DEBUG] SWITCH: GESTURE step 1 -> 1 (target=2) posted=false";
  const std::vector<Case> cases{
      {"bridged", {}, {start12, "[DEBUG] SWITCH: method 'bridged' -> active=1 target=2 OK"}, bridged},
      {"gesture",
       [](SimulatedFaults& faults) { faults.refuseBridged(); },
       {start12, noBridge, "[DEBUG] SWITCH: GESTURE step 1 -> 2 (target=2) posted=true",
        "[DEBUG] SWITCH: method 'gesture' -> active=2 target=2 OK"},
       {"bridgedShowSpaces([2])", "swipe(left, right)"}},
      {"gesture",
       [](SimulatedFaults& faults) { faults.ignored.insert(Operation::bridgedSetCurrentSpace); },
       {start12, "[WARNING] SWITCH: bridged switch to 2 did not arrive, falling back to gesture",
        "[DEBUG] SWITCH: GESTURE step 1 -> 2 (target=2) posted=true",
        "[DEBUG] SWITCH: method 'gesture' -> active=2 target=2 OK"},
       {bridged[0], bridged[1], bridged[2], "swipe(left, right)"}},
      {"aktivace aplikace",
       noSwipe,
       {start12, noBridge, step, activating, activated},
       {"bridgedShowSpaces([2])", "activate(1001)"}},
      {"SLS (degraded)",
       [&](SimulatedFaults& faults) {
         noSwipe(faults);
         faults.ignored.insert(Operation::activate);
       },
       {start12, noBridge, step, activating, notActivated, degraded},
       {"bridgedShowSpaces([2])", "activate(1001)", "managedDisplaySetCurrentSpace(left, 2)"}},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.method);
    open(newSystem);
    if (each.faults) fault(each.faults);
    EXPECT_TRUE(Spaces::switchTo(target));
    EXPECT_EQ(Spaces::lastSwitchMethod(), each.method);
    EXPECT_EQ(world().currentSpace("left"), 2u);
    EXPECT_EQ(takeLog(), each.log);
    EXPECT_EQ(deeds(world().calls()), each.deeds);
    EXPECT_THAT(client.takeCalls(), IsEmpty()) << "the external window manager is never asked";
    EXPECT_EQ(Spaces::cachedActiveSpaceID("left"), 2u);
    sim->time().runUntilIdle();  // what goes on watching the display
  }
}

TEST_F(Ladder, OnOldSystemsTheExternalWindowManagerComesFirst) {
  const YabaiClient::Arguments focus{"-m", "space", "--focus", "2"};
  const std::string noAnswer = "[DEBUG] YABAI: query --spaces failed";
  const std::string yabaiFailed = "[DEBUG] SWITCH: method 'yabai' -> active=1 target=2 FAILED";
  struct Case {
    std::string method;
    std::function<void()> prepare;
    bool arrives;
    std::vector<std::string> log;
    std::vector<YabaiClient::Arguments> asked;
    std::vector<std::string> deeds;
  };
  const auto query = YabaiClient::query;
  const auto ignoreActivation = [this] {
    fault([](SimulatedFaults& faults) { faults.ignored.insert(Operation::activate); });
  };
  const std::vector<Case> cases{
      {"yabai",
       [this] { yabaiObeys(); },
       true,
       {start12, "[DEBUG] SWITCH: method 'yabai' -> active=2 target=2 OK"},
       {query, query, focus},
       {}},
      {"yabai (already there)",
       [this] { yabaiRefuses("cannot focus: Already Focused."); },
       true,
       {start12, "[DEBUG] YABAI: command '-m space --focus 2' failed (1): cannot focus: Already Focused.",
        "[DEBUG] YABAI: space 2 (index 2) is already focused — treating as success",
        "[DEBUG] SWITCH: yabai reports we are already on the target, nothing to do"},
       {query, query, focus},
       {}},
      {"skipped (Mission Control)",
       [this] { yabaiRefuses("mission-control is active"); },
       false,
       {start12, "[WARNING] YABAI: command '-m space --focus 2' failed (1): mission-control is active",
        "[INFO] SWITCH: skipped — Mission Control is active (target=2)"},
       {query, query, focus},
       {}},
      {"aktivace aplikace",
       [] {},
       true,
       {start12, yabaiFailed, activating, activated},
       {query, query, focus},
       {"activate(1001)"}},
      {"aktivace aplikace",
       [this] { yabaiRefuses("no such space"); },
       true,
       {start12, "[ERROR] YABAI: command '-m space --focus 2' failed (1): no such space", activating, activated},
       {query, query, focus},
       {"activate(1001)"}},
      {"SLS (degraded)",
       ignoreActivation,
       true,
       {start12, yabaiFailed, activating, notActivated, degraded},
       {query, query, focus},
       {"activate(1001)", "managedDisplaySetCurrentSpace(left, 2)"}},
      {"aktivace aplikace",
       [this] { std::filesystem::remove(client.second()); },
       true,
       {noAnswer, start12, noAnswer, activating, activated},
       {},
       {"activate(1001)"}},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const auto& each = cases[i];
    SCOPED_TRACE(testing::Message() << i << " " << each.method);
    client.install();
    client.on("-m space --focus 2", "");
    open(oldSystem);
    each.prepare();
    EXPECT_EQ(Spaces::switchTo(target), each.arrives);
    EXPECT_EQ(Spaces::lastSwitchMethod(), each.method);
    EXPECT_EQ(takeLog(), each.log);
    EXPECT_EQ(client.takeCalls(), each.asked);
    EXPECT_EQ(deeds(world().calls()), each.deeds);
    EXPECT_EQ(Spaces::cachedActiveSpaceID("left").has_value(), each.arrives);
    Spaces::forgetEverything();
  }
}

TEST_F(Ladder, OnOldSystemsTooTheLatestWishHasTheLastWord) {
  open(oldSystem);
  const auto desktops = Spaces::enumerate().desktops;
  std::vector<std::string> ends;
  Spaces::switchWithoutOverlay(desktops[1], [&](bool arrived) { ends.push_back(arrived ? "B" : "B overtaken"); });
  Spaces::switchWithoutOverlay(desktops[2], [&](bool arrived) { ends.push_back(arrived ? "C" : "C overtaken"); });
  sim->time().outside(60ms, [this] { world().showSpace(3); });
  (void)client.takeCalls();
  sim->time().runUntilIdle();
  EXPECT_THAT(ends, ElementsAre("B overtaken", "C"));
  EXPECT_THAT(client.takeCalls(), Not(Contains(YabaiClient::Arguments{"-m", "space", "--focus", "2"})));
  EXPECT_EQ(Spaces::cachedActiveSpaceID("left"), 3u);
  EXPECT_FALSE(world().asked(Operation::activate));
}

TEST_F(Ladder, AsksTheExternalWindowManagerWhichDesktopIsTheCurrentOne) {
  for (const auto version : {oldSystem, newSystem}) {
    open(version);
    client.answerQuery(R"([{"id": 3, "index": 3, "has-focus": true}])");
    const auto snapshot = Spaces::enumerate(Spaces::WithWindows::no);
    EXPECT_EQ(Spaces::currentDesktopIndex(snapshot, "left"), version == oldSystem ? 2 : 0);
    client.answerQuery(R"([{"id": 99, "index": 3, "has-focus": true}])");
    EXPECT_EQ(Spaces::currentDesktopIndex(snapshot, "left"), 0) << "it speaks of another display";
    EXPECT_EQ(client.takeCalls().empty(), version == newSystem);
  }
}

TEST_F(Ladder, BelievesTheExternalWindowManagerAboutWhereItIs) {
  open(oldSystem);
  client.answerQuery(R"([{"id": 1, "index": 1}, {"id": 2, "index": 2, "has-focus": true}])");
  EXPECT_TRUE(Spaces::switchTo(target));
  EXPECT_EQ(Spaces::lastSwitchMethod(), "no-op (already active)");
  EXPECT_EQ(world().currentSpace("left"), 1u);
  EXPECT_THAT(client.takeCalls(), ElementsAre(YabaiClient::query));
  EXPECT_THAT(takeLog(), ElementsAre("[DEBUG] SWITCH: start active=2 target=2 windowsOnTarget=1",
                                     "[DEBUG] SWITCH: target already active, doing nothing"));
}

TEST_F(Ladder, ASwipeThatEndsElsewhereIsNoArrival) {
  open(newSystem);
  fault([](SimulatedFaults& faults) {
    faults.refuseBridged();
    faults.delayed[Operation::swipe] = 10ms;
    faults.yank = {.space = 3, .after = 0ms, .times = 100};
  });
  EXPECT_TRUE(Spaces::switchTo(target));
  EXPECT_EQ(Spaces::lastSwitchMethod(), "aktivace aplikace");
}

TEST_F(Ladder, ALaterSwitchEndsTheWatchOverAnEarlierGesture) {
  open(newSystem);
  fault([](SimulatedFaults& faults) { faults.refuseBridged(); });
  ASSERT_TRUE(Spaces::switchTo(target));
  fault([](SimulatedFaults& faults) { faults.unavailable.clear(); });
  const auto third = Spaces::enumerate().desktops.at(2);
  sim->time().outside(200ms, [&] { Spaces::switchWithoutOverlay(third); });
  (void)takeLog();
  sim->time().runUntilIdle();
  EXPECT_EQ(world().currentSpace("left"), 3u);
  EXPECT_THAT(takeLog(), Each(Not(HasSubstr("yanked"))));
}

TEST_F(Ladder, MovesTheFocusedWindowOnBothSidesOfTheSwitchPoint) {
  const auto move = [this](GridDirection direction) {
    std::optional<bool> end;
    const bool accepted = Spaces::moveFocusedWindowToNeighbor(direction, [&](bool moved) { end = moved; });
    sim->time().runUntilIdle();
    EXPECT_EQ(accepted, end.has_value());
    return end;
  };
  const std::string world2 = "left 960x1080 | A* [Editor] B";
  start(world2, newSystem);
  const WindowID window = Spaces::ids(1).at(0);
  world().focusWindow(window);
  EXPECT_EQ(move(GridDirection::right), true);
  EXPECT_THAT(world().spacesOf(window), ElementsAre(2u));
  EXPECT_EQ(takeLog().back(), "[INFO] HOTKEY: move window " + std::to_string(window) + " to desktop 2 OK");
  EXPECT_THAT(client.takeCalls(), IsEmpty());

  // On an older system the client moves whichever window has the focus; the window server is not asked to.
  start(world2, oldSystem);
  client.answerQuery(R"([{"id": 1, "index": 1, "has-focus": true}, {"id": 2, "index": 2}])");
  const YabaiClient::Arguments moving{"-m", "window", "--space", "2"};
  EXPECT_EQ(move(GridDirection::right), true);
  EXPECT_THAT(client.takeCalls(), ElementsAre(YabaiClient::probe, YabaiClient::query, moving));
  EXPECT_EQ(takeLog().back(), "[INFO] HOTKEY: move window with the focus to desktop 2 OK");
  EXPECT_FALSE(world().asked(Operation::bridgedMoveWindows));

  client.on("-m window --space 2", "exit 3");
  EXPECT_EQ(move(GridDirection::right), false);
  EXPECT_EQ(takeLog().back(), "[INFO] HOTKEY: move window with the focus to desktop 2 FAILED");

  // Without the client it refuses.
  std::filesystem::remove(client.second());
  EXPECT_EQ(move(GridDirection::right), std::nullopt);
  EXPECT_EQ(takeLog().back(),
            "[WARNING] HOTKEY: move window requires yabai (macOS won't otherwise allow moving another app's window "
            "between Spaces)");
}

TEST_F(Ladder, OtherApplicationsWindowsGoTheSystemsOwnWay) {
  start("left 960x1080 | A* [Editor] B", newSystem);
  const WindowID window = Spaces::ids(1).at(0);
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedMoveWindows] = 100ms; });
  EXPECT_TRUE(Spaces::moveOtherAppWindow(window, 2));
  EXPECT_THAT(world().spacesOf(window), ElementsAre(2u));
  EXPECT_FALSE(world().asked(Operation::moveWindowsToManagedSpace)) << "the window has time to arrive";
  EXPECT_THAT(client.takeCalls(), IsEmpty());

  start("left 960x1080 | A* [Editor] B", oldSystem);
  client.answerQuery(firstFocused);
  EXPECT_TRUE(Spaces::moveOtherAppWindow(window, 2));
  EXPECT_THAT(
      client.takeCalls(),
      ElementsAre(YabaiClient::query, YabaiClient::Arguments{"-m", "window", std::to_string(window), "--space", "2"}));
  EXPECT_FALSE(world().asked(Operation::moveWindowsToManagedSpace));
}

TEST_F(Ladder, AWindowThatIgnoresRequestsIsDraggedAlong) {
  for (const bool carriesAlong : {true, false}) {
    SCOPED_TRACE(carriesAlong);
    start("left 960x1080 | A* [Editor] B", newSystem);
    const WindowID window = Spaces::ids(1).at(0);
    world().focusWindow(window);
    world().edit([&](WorldState& state) { state.carriesDraggedWindow = carriesAlong; });
    fault([](SimulatedFaults& faults) { faults.ignoreMoveMethods(4); });
    (void)takeLog();
    std::optional<bool> end;
    ASSERT_TRUE(Spaces::moveFocusedWindowToNeighbor(GridDirection::right, [&](bool moved) { end = moved; }));
    sim->time().runUntilIdle();
    EXPECT_EQ(end, carriesAlong);
    EXPECT_THAT(world().spacesOf(window), ElementsAre(carriesAlong ? 2u : 1u));
    EXPECT_EQ(world().currentSpace("left"), 1u) << "the user ends where he was";
    const auto log = takeLog();
    EXPECT_THAT(log, Contains(HasSubstr("MOVE FAILED [" + std::to_string(window) + "] -> space 2")));
    EXPECT_THAT(log, Contains(AnyOf(StartsWith("[INFO] DRAGSIM: window"), StartsWith("[WARNING] DRAGSIM: window"))));
  }
}

TEST_F(Ladder, OfTwoMovesOfAWindowTheLaterCounts) {
  start("left 960x1080 | A* B [Editor] C", newSystem);
  const WindowID window = Spaces::ids(2).at(0);
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedMoveWindows] = 250ms; });
  std::vector<bool> ends;
  platform().dispatch().background([&] { ends.push_back(Spaces::move(window, 3)); });
  sim->time().outside(50ms,
                      [&] { platform().dispatch().background([&] { ends.push_back(Spaces::move(window, 1)); }); });
  sim->time().runUntilIdle();
  EXPECT_THAT(world().spacesOf(window), ElementsAre(1u));
  EXPECT_THAT(ends, testing::UnorderedElementsAre(true, false));
  EXPECT_THAT(takeLog(), Contains("[DEBUG] MOVE: overtaken [" + std::to_string(window) + "] -> space 3"));
}

TEST_F(Ladder, AStickyWindowAndOneOfAnotherDisplayAreCarriedToo) {
  start("left 960x1080 | A* [Editor] B ; right 960x1080 | X* [Mail] Y", newSystem);
  const WindowID editor = Spaces::ids(1).at(0);
  const WindowID mail = Spaces::ids(3).at(0);
  const auto carry = [&](WindowID window) {
    world().focusWindow(window);
    Spaces::moveFocusedWindowToNeighbor(GridDirection::right);
    sim->time().runUntilIdle();
    return world().spacesOf(window);
  };
  world().edit([&](WorldState& state) { state.window(editor)->sticky = true; });
  world().setPointer({10, 10});
  EXPECT_THAT(carry(editor), ElementsAre(2u)) << "it is on that desktop alone";
  EXPECT_FALSE(world().state()->window(editor)->sticky);
  // The pointer says on which display the command works, the focus which window it takes.
  EXPECT_THAT(carry(mail), ElementsAre(2u));
}

TEST_F(Ladder, AWindowThatHasGoneIsNotDragged) {
  start("left 960x1080 | A* [Editor] B", newSystem);
  const WindowID window = Spaces::ids(1).at(0);
  world().focusWindow(window);
  world().beforeNext(Operation::bridgedMoveWindows, [&] { world().removeWindow(window); });
  (void)takeLog();
  Spaces::moveFocusedWindowToNeighbor(GridDirection::right);
  sim->time().runUntilIdle();
  EXPECT_THAT(takeLog(), Each(Not(HasSubstr("DRAGSIM"))));
  EXPECT_EQ(world().currentSpace("left"), 1u);
}

}  // namespace
}  // namespace tessaspaces
