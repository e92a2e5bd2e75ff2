#include <gmock/gmock.h>

#include <functional>

#include "bridges/GestureSwitch.h"
#include "bridges/TitleBarDrag.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Lines = std::vector<std::string>;

class GestureSwitchTest : public CoreTest {
 protected:
  /// A target of `display`, with the windows that are there.
  DesktopInfo desktop(SpaceID space, const std::string& display = "left") {
    DesktopInfo target(space, display);
    const auto state = world().state();
    for (const auto& window : state->windows) {
      if (window.isOn(space)) target.windows.push_back({window.id, window.reported.name.value_or(""), window.pid, {}});
    }
    return target;
  }
  bool perform(SpaceID space) { return GestureSwitch::perform(desktop(space)); }
  /// The lines that this code wrote.
  Lines gestureLog() {
    auto lines = takeLog();
    std::erase_if(lines, [](const auto& line) { return line.find("SWITCH: GESTURE") == std::string::npos; });
    return lines;
  }
  Lines swipes() { return world().calls(Operation::swipe); }
  SpaceID shown(const char* display = "left") { return world().currentSpace(display); }
  void yank(SimulatedFaults::Yank yank) {
    world().editFaults([&](SimulatedFaults& faults) { faults.yank = yank; });
  }
  /// Runs it off the main thread, to its end.
  void inBackground(std::function<void()> work) {
    sim->dispatch().background(std::move(work));
    sim->time().runUntilIdle();
  }
};

TEST_F(GestureSwitchTest, TakesOneStepToANeighbourAndABurstToOneFurtherAway) {
  const std::string right = "swipe(left, right)";
  const std::string left = "swipe(left, left)";
  struct Case {
    const char* world;
    SpaceID target;
    bool moved;
    Lines swipes;
    Lines log;
  };
  const std::vector<Case> cases{
      {"left 960x1080 | A* B C", 2, true, {right}, {"[DEBUG] SWITCH: GESTURE step 1 -> 2 (target=2) posted=true"}},
      {"left 960x1080 | A B* C", 1, true, {left}, {"[DEBUG] SWITCH: GESTURE step 2 -> 1 (target=1) posted=true"}},
      {"left 960x1080 | A* B C D",
       4,
       true,
       {right, right, right},
       {"[DEBUG] SWITCH: GESTURE burst 1 -> 4 (target=4) steps=3"}},
      // A full-screen space is on the way as any other.
      {"left 960x1080 | A F! C*", 1, true, {left, left}, {"[DEBUG] SWITCH: GESTURE burst 3 -> 1 (target=1) steps=2"}},
      {"left 960x1080 | A B* C", 2, false, {}, {}},
      {"left 960x1080 | A* B", 7, false, {}, {"[WARNING] SWITCH: GESTURE target 7 not in display order"}},
  };
  for (const bool natural : {true, false}) {
    for (const auto& each : cases) {
      SCOPED_TRACE(std::string(each.world) + (natural ? ", natural" : ""));
      start(each.world);
      sim->setNaturalScrolling(natural);
      EXPECT_EQ(perform(each.target), each.moved);
      EXPECT_EQ(swipes(), each.swipes);
      EXPECT_EQ(gestureLog(), each.log);
      EXPECT_EQ(world().calls(Operation::postEvent).size(), 6 * each.swipes.size());
      if (each.moved) {
        EXPECT_EQ(shown(), each.target);
      }
    }
  }
}

TEST_F(GestureSwitchTest, ABurstDoesNotWaitForEachDesktop) {
  start("left 960x1080 | A* B C D E");
  world().editFaults([](SimulatedFaults& faults) { faults.delayed = {{Operation::swipe, 300ms}}; });
  EXPECT_TRUE(perform(5));
  EXPECT_EQ(sim->dispatch().now().time_since_epoch(), 330ms) << "three gaps, then the last one's own time";
  EXPECT_EQ(shown(), 5U);
}

TEST_F(GestureSwitchTest, FindsItsWayWhereThePreferenceIsWrong) {
  for (const bool natural : {true, false}) {
    start("left 960x1080 | A B C* D E");
    // The preference changes between the look at it and the swipes.
    sim->setNaturalScrolling(natural);
    world().beforeNext(Operation::createEvent, [&] { sim->setNaturalScrolling(!natural); });
    const std::string value = natural ? "true" : "false";
    EXPECT_TRUE(perform(4));
    EXPECT_EQ(shown(), 4U);
    EXPECT_EQ(swipes(), (Lines{"swipe(left, left)", "swipe(left, right)", "swipe(left, right)"}));
    EXPECT_THAT(gestureLog(),
                ElementsAre("[DEBUG] SWITCH: GESTURE step 3 -> 2 (target=4) posted=true",
                            "[WARNING] SWITCH: GESTURE moved away from target, direction flipped (naturalScrolling=" +
                                value + ")",
                            "[DEBUG] SWITCH: GESTURE step 2 -> 3 (target=4) posted=true",
                            "[DEBUG] SWITCH: GESTURE step 3 -> 4 (target=4) posted=true"));
    // The next switch asks the preference again.
    EXPECT_TRUE(perform(3));
    EXPECT_THAT(gestureLog(), ElementsAre("[DEBUG] SWITCH: GESTURE step 4 -> 3 (target=3) posted=true"));
  }
  start("left 960x1080 | A B C D* E F");
  world().beforeNext(Operation::createEvent, [&] { sim->setNaturalScrolling(false); });
  EXPECT_TRUE(perform(6));
  EXPECT_EQ(shown(), 6U);
  auto log = gestureLog();
  ASSERT_EQ(log.size(), 8U);
  EXPECT_EQ(log[0], "[DEBUG] SWITCH: GESTURE burst 4 -> 2 (target=6) steps=2");
  EXPECT_EQ(log[1], "[DEBUG] SWITCH: GESTURE step 2 -> 1 (target=6) posted=true");
}

TEST_F(GestureSwitchTest, GivesUpWhenNothingMoves) {
  start("left 960x1080 | A* B C");
  world().editFaults([](SimulatedFaults& faults) { faults.ignored = {Operation::swipe}; });
  EXPECT_FALSE(perform(2));
  EXPECT_THAT(gestureLog(), ElementsAre("[DEBUG] SWITCH: GESTURE step 1 -> 1 (target=2) posted=true"));
  EXPECT_FALSE(perform(3));
  EXPECT_THAT(gestureLog(), ElementsAre("[DEBUG] SWITCH: GESTURE burst 1 -> 1 (target=3) steps=2",
                                        "[DEBUG] SWITCH: GESTURE step 1 -> 1 (target=3) posted=true"));
}

TEST_F(GestureSwitchTest, PostsNothingOfASwipeThatCannotBeMadeWhole) {
  struct Case {
    Operation operation;
    int number;
  };
  // The three events of the swipe, then the one that follows each of them.
  for (const auto& [operation, number] : {Case{Operation::createEvent, 1}, Case{Operation::createEvent, 2},
                                          Case{Operation::createEvent, 4}, Case{Operation::recreateEvent, 2}}) {
    SCOPED_TRACE(std::string(operationName(operation)) + " " + std::to_string(number));
    start("left 960x1080 | A* B");
    std::function<void(int)> failAt = [&, failing = operation](int left) {
      world().beforeNext(failing, [&, failing, left] {
        if (left > 1) return failAt(left - 1);
        world().editFaults([&](SimulatedFaults& faults) { faults.unanswered = {failing}; });
      });
    };
    failAt(number);
    EXPECT_FALSE(perform(2));
    EXPECT_THAT(world().calls(Operation::postEvent), IsEmpty());
    EXPECT_THAT(gestureLog(), ElementsAre("[DEBUG] SWITCH: GESTURE step 1 -> 1 (target=2) posted=false"));
  }
}

TEST_F(GestureSwitchTest, AnOvertakenSwitchEndsQuietly) {
  start("left 960x1080 | A* B C D");
  const auto swiped = [&] { return !swipes().empty(); };
  EXPECT_TRUE(GestureSwitch::perform(desktop(4), swiped));
  EXPECT_EQ(swipes().size(), 1U) << "the rest of the burst is not posted";
  EXPECT_EQ(shown(), 2U);

  world().editFaults([](SimulatedFaults& faults) { faults.ignored = {Operation::swipe}; });
  const auto begin = sim->dispatch().now();
  EXPECT_FALSE(GestureSwitch::perform(desktop(1), [&] { return sim->dispatch().now() - begin >= 100ms; }));
  EXPECT_EQ(sim->dispatch().now() - begin, 100ms);

  sim->time().runUntilIdle();
  EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(GestureSwitchTest, KeepsTheDisplayOnTheTarget) {
  const std::string step = "[DEBUG] SWITCH: GESTURE step 1 -> 2 (target=2) posted=true";
  const auto yanked = [](int attempt) {
    return "[WARNING] SWITCH: GESTURE yanked 2 -> 1 frontApp=?, correcting (attempt " + std::to_string(attempt) + ")";
  };
  const std::string lost = "[WARNING] SWITCH: GESTURE could not hold target 2 after 2 corrections";
  struct Case {
    int yanks;
    Lines log;
    SpaceID shown;
    Duration end;
  };
  const std::vector<Case> cases{
      {0, {step}, 2, 500ms},
      {1, {step, yanked(1), step}, 2, 600ms},
      {2, {step, yanked(1), step, yanked(2), step}, 2, 700ms},
      {3, {step, yanked(1), step, yanked(2), step, lost}, 1, 300ms},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.yanks);
    start("left 960x1080 | A* B");
    yank({1, 100ms, each.yanks});
    EXPECT_TRUE(perform(2));
    inBackground([&] { GestureSwitch::settle(desktop(2)); });
    EXPECT_EQ(gestureLog(), each.log);
    EXPECT_EQ(shown(), each.shown);
    EXPECT_EQ(sim->dispatch().now().time_since_epoch(), each.end);
  }
}

TEST_F(GestureSwitchTest, StopsKeepingWhatHasGone) {
  for (const bool display : {true, false}) {
    SCOPED_TRACE(display ? "the display" : "the target");
    start("left 960x1080 | A* B ; right 960x1080+960 | X* Y");
    world().setPointer({1200, 200});
    EXPECT_TRUE(GestureSwitch::perform(desktop(4, "right")));
    sim->dispatch().after(100ms, [&] { display ? world().removeDisplay("right") : world().removeSpace(4); });
    takeLog();
    inBackground([&] { GestureSwitch::settle(desktop(4, "right")); });
    EXPECT_EQ(swipes().size(), 1U);
    EXPECT_THAT(gestureLog(), IsEmpty());
  }
}

TEST_F(GestureSwitchTest, LeavesTheDisplayToANewerSwitch) {
  start("left 960x1080 | A* B C");
  EXPECT_TRUE(perform(2));
  sim->dispatch().after(100ms, [&] { sim->dispatch().background([&] { perform(3); }); });
  inBackground([&] { GestureSwitch::settle(desktop(2)); });
  EXPECT_EQ(shown(), 3U);
  EXPECT_THAT(gestureLog(), ElementsAre("[DEBUG] SWITCH: GESTURE step 1 -> 2 (target=2) posted=true",
                                        "[DEBUG] SWITCH: GESTURE step 2 -> 3 (target=3) posted=true"));

  // One that is in the middle of a correction, which takes its time.
  world().editFaults([](SimulatedFaults& faults) { faults.delayed = {{Operation::swipe, 200ms}}; });
  sim->dispatch().after(100ms, [&] { world().showSpace(2); });
  sim->dispatch().after(250ms, [&] { sim->dispatch().background([&] { perform(1); }); });
  inBackground([&] { GestureSwitch::settle(desktop(3)); });
  EXPECT_EQ(shown(), 1U);
  auto log = gestureLog();
  EXPECT_THAT(log, Not(Contains(testing::HasSubstr("could not hold"))));
  EXPECT_EQ(log.back(), "[DEBUG] SWITCH: GESTURE step 2 -> 1 (target=1) posted=true");

  // One that was made by other means, of which the caller knows.
  bool switched = false;
  sim->dispatch().after(100ms, [&] {
    switched = true;
    world().showSpace(3);
  });
  inBackground([&] { GestureSwitch::settle(desktop(1), [&] { return switched; }); });
  EXPECT_THAT(gestureLog(), IsEmpty());
}

TEST_F(GestureSwitchTest, ActivatesAnApplicationOfTheTargetBeforeItCorrects) {
  struct Case {
    const char* name;
    const char* world;
    std::function<void(SimulatedFaults&)> fault;
    Lines activations;
    Lines swipes;
  };
  const std::string swipe = "swipe(left, right)";
  const std::vector<Case> cases{
      {"that brings the display back", "left 960x1080 | A*[mail] B[editor]", [](auto&) {}, {"activate(1002)"}, {swipe}},
      {"soon",
       "left 960x1080 | A*[mail] B[editor]",
       [](auto& faults) {
         faults.delayed = {{Operation::activate, 150ms}};
       },
       {"activate(1002)"},
       {swipe}},
      {"it does not come",
       "left 960x1080 | A*[mail] B[editor]",
       [](auto& faults) { faults.ignored = {Operation::activate}; },
       {"activate(1002)"},
       {swipe, swipe}},
      {"it would lead elsewhere", "left 960x1080 | A*[editor] B[editor]", [](auto&) {}, {}, {swipe, swipe}},
  };
  for (const bool onMainThread : {false, true}) {
    for (const auto& each : cases) {
      SCOPED_TRACE(std::string(each.name) + (onMainThread ? ", on the main thread" : ""));
      start(each.world);
      yank({1, 100ms, 1});
      EXPECT_TRUE(perform(2));
      world().editFaults(each.fault);
      const auto settle = [target = desktop(2)] { GestureSwitch::settle(target); };
      onMainThread ? settle() : inBackground(settle);
      sim->time().runUntilIdle();
      EXPECT_EQ(world().calls(Operation::activate), each.activations);
      EXPECT_EQ(swipes(), each.swipes);
      EXPECT_EQ(shown(), 2U);
      EXPECT_EQ(world().state()->focused, desktop(2).windows.front().id);
      EXPECT_EQ(gestureLog()[1], std::string("[WARNING] SWITCH: GESTURE yanked 2 -> 1 frontApp=simulated.") +
                                     (each.activations.empty() ? "editor" : "mail") + ", correcting (attempt 1)");
    }
  }
}

TEST_F(GestureSwitchTest, FocusesTheFirstWindowOfADesktopThatIsShown) {
  start("left 960x1080 | A*[mail editor] B[chat] C");
  const auto mail = desktop(1).windows[0].id;
  const auto editor = desktop(1);
  world().focusWindow(editor.windows[1].id);
  takeLog();
  GestureSwitch::focusTarget(editor);
  EXPECT_FALSE(world().asked(Operation::raiseWindow)) << "not before the main thread has time";
  sim->time().runUntilIdle();
  EXPECT_EQ(world().state()->focused, mail);

  world().clearCalls();
  GestureSwitch::focusTarget(desktop(2));
  GestureSwitch::focusTarget(desktop(3));
  sim->time().runUntilIdle();
  EXPECT_FALSE(world().asked(Operation::activate) || world().asked(Operation::raiseWindow)) << "the user has gone on";
  EXPECT_THAT(takeLog(), IsEmpty());

  const auto stale = desktop(1);
  world().removeWindow(mail);
  GestureSwitch::focusTarget(stale);
  sim->time().runUntilIdle();
  EXPECT_THAT(takeLog(),
              ElementsAre("[DEBUG] SWITCH: window " + std::to_string(mail) + " 'mail' (pid 1001) not found via AX"));
}

TEST_F(GestureSwitchTest, TakesThePointerToTheTargetsDisplayAndBack) {
  const auto world2 = "left 960x1080 | A* B ; right 960x1080+960 | X* Y";
  const Point home{100, 200};
  start(world2);
  world().setPointer(home);
  EXPECT_TRUE(GestureSwitch::perform(desktop(4, "right")));
  EXPECT_EQ(shown("right"), 4U);
  EXPECT_EQ(shown("left"), 1U);
  EXPECT_EQ(world().state()->pointer, home);

  // The user takes the mouse meanwhile.
  world().setPointer(home);
  const Point taken{500, 300};
  world().beforeNext(Operation::swipe, [&] { world().setPointer(taken); });
  EXPECT_TRUE(GestureSwitch::perform(desktop(3, "right")));
  EXPECT_EQ(world().state()->pointer, taken);

  // Whoever wants it elsewhere meanwhile does not get it.
  world().setPointer(home);
  world().clearCalls();
  world().beforeNext(Operation::swipe, [&] {
    EXPECT_FALSE(GestureSwitch::perform(desktop(2)));
    EXPECT_FALSE(TitleBarDrag::carry({1, "mail", 1001, {}}, [] { return true; }));
    EXPECT_THAT(takeLog().back(), testing::HasSubstr("the pointer is on its way with something else"));
  });
  EXPECT_TRUE(GestureSwitch::perform(desktop(4, "right")));
  EXPECT_EQ(world().calls(Operation::moveMouse).size(), 2U);
  EXPECT_EQ(world().state()->pointer, home);
  EXPECT_TRUE(GestureSwitch::perform(desktop(3, "right"))) << "the hand is free again";

  // Not while something may be dragged, and not where it need not.
  world().clearCalls();
  gestureLog();
  world().edit([](WorldState& state) { state.userHoldsButton = true; });
  EXPECT_FALSE(GestureSwitch::perform(desktop(4, "right")));
  EXPECT_TRUE(GestureSwitch::perform(desktop(2)));
  EXPECT_FALSE(world().asked(Operation::moveMouse));
  EXPECT_THAT(gestureLog(), ElementsAre("[DEBUG] SWITCH: GESTURE the pointer is not on the display of target 4",
                                        "[DEBUG] SWITCH: GESTURE step 1 -> 2 (target=2) posted=true"));
}

}  // namespace
}  // namespace tessaspaces
