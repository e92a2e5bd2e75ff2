#include <gmock/gmock.h>

#include "model/Snapshot.h"
#include "model/Switching.h"
#include "model/WindowMoves.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Switching : public CoreTest {
 protected:
  /// Desktop B of the left display, with the windows of a snapshot.
  DesktopRef target() {
    const auto snapshot = Spaces::enumerate();
    for (const auto& desktop : snapshot.desktops) {
      if (desktop->name == "B") return desktop;
    }
    return nullptr;
  }
  bool switchToB() {
    const auto desktop = target();
    (void)takeLog();
    world().clearCalls();
    return Spaces::switchTo(desktop);
  }
  void fault(const std::function<void(SimulatedFaults&)>& change) { world().editFaults(change); }
};

constexpr auto left = "left 960x1080 | A* B [Editor] C ; right 960x1080 | X*";

TEST_F(Switching, TheBridgedOperationIsTheFirstAndCleanest) {
  start(left);
  EXPECT_TRUE(switchToB());
  EXPECT_EQ(Spaces::lastSwitchMethod(), "bridged");
  EXPECT_EQ(Spaces::cachedActiveSpaceID("left"), 2u);
  EXPECT_EQ(world().currentSpace("right"), 4u) << "the other display stays where it is";
  EXPECT_THAT(takeLog(), ElementsAre("[DEBUG] SWITCH: start active=1 target=2 windowsOnTarget=1",
                                     "[DEBUG] SWITCH: method 'bridged' -> active=1 target=2 OK"));
  EXPECT_THAT(world().calls(Operation::bridgedShowSpaces), ElementsAre("bridgedShowSpaces([2])"));
  EXPECT_THAT(world().calls(Operation::bridgedHideSpaces), ElementsAre("bridgedHideSpaces([1, 3])"));
  EXPECT_FALSE(world().asked(Operation::activate));
  EXPECT_FALSE(world().asked(Operation::managedDisplaySetCurrentSpace));
}

TEST_F(Switching, AnActiveTargetIsLeftAlone) {
  start(left);
  world().showSpace(2);
  EXPECT_TRUE(switchToB());
  EXPECT_EQ(Spaces::lastSwitchMethod(), "no-op (already active)");
  EXPECT_THAT(takeLog(), ElementsAre("[DEBUG] SWITCH: start active=2 target=2 windowsOnTarget=1",
                                     "[DEBUG] SWITCH: target already active, doing nothing"));
  EXPECT_FALSE(world().asked(Operation::bridgedShowSpaces));
}

TEST_F(Switching, ALateArrivalIsWaitedForAndALaterOneIsNot) {
  start(left);
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedSetCurrentSpace] = 480ms; });
  EXPECT_TRUE(switchToB());
  EXPECT_EQ(Spaces::lastSwitchMethod(), "bridged");

  world().showSpace(1);
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedSetCurrentSpace] = 5s; });
  EXPECT_TRUE(switchToB());
  EXPECT_EQ(Spaces::lastSwitchMethod(), "gesture");
  EXPECT_THAT(takeLog(), Contains("[WARNING] SWITCH: bridged switch to 2 did not arrive, falling back to gesture"));
}

TEST_F(Switching, AfterTheLastMethodWhereTheDisplayIsCounts) {
  start("left 960x1080 | A* B C");
  fault([](SimulatedFaults& faults) {
    faults.refuseBridged();
    faults.ignored = {Operation::swipe};
    faults.landsOn[Operation::managedDisplaySetCurrentSpace] = 3;
  });
  EXPECT_FALSE(switchToB());
  EXPECT_FALSE(world().asked(Operation::activate)) << "a target without windows has nothing to activate";
  EXPECT_EQ(Spaces::lastSwitchMethod(), "SLS (degraded)");
  EXPECT_THAT(takeLog().back(), HasSubstr("(active=3)"));
  EXPECT_EQ(Spaces::cachedActiveSpaceID("left"), std::nullopt) << "only an arrival is remembered";
}

TEST_F(Switching, RunsOffTheMainThreadAndReportsOnIt) {
  start(left);
  const auto desktop = target();
  fault([](SimulatedFaults& faults) { faults.refuseBridged(); });
  std::vector<std::string> events;
  Spaces::switchWithoutOverlay(desktop, [&](bool arrived) {
    events.push_back(arrived && platform().dispatch().isMainThread() ? "arrived" : "wrong");
  });
  EXPECT_EQ(world().currentSpace("left"), 1u) << "nothing happens before the caller has returned";
  sim->time().runUntilIdle();
  EXPECT_THAT(events, ElementsAre("arrived"));
  EXPECT_EQ(world().currentSpace("left"), 2u);
}

TEST_F(Switching, ALaterSwitchOvertakesAnEarlierOne) {
  start("left 960x1080 | A* B [Editor] C ; right 960x1080 | X* Y");
  const auto desktops = Spaces::enumerate().desktops;
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedSetCurrentSpace] = 300ms; });
  std::vector<std::string> ends;
  const auto go = [&](std::size_t index) {
    Spaces::switchWithoutOverlay(desktops[index], [&ends, &desktops, index](bool arrived) {
      ends.push_back(desktops[index]->name + (arrived ? " arrived" : " overtaken"));
    });
  };
  (void)takeLog();
  go(1);
  sim->time().outside(50ms, [&] {  // the first is under way
    go(2);
    go(4);  // the other display's business
  });
  sim->time().runUntilIdle();
  EXPECT_THAT(ends, testing::UnorderedElementsAre("B overtaken", "C arrived", "Y arrived"));
  EXPECT_EQ(world().currentSpace("left"), 3u);
  EXPECT_EQ(world().currentSpace("right"), 5u);
  EXPECT_FALSE(world().asked(Operation::activate)) << "no fall-back of the first touches the display";
  EXPECT_FALSE(world().asked(Operation::managedDisplaySetCurrentSpace));
  EXPECT_THAT(takeLog(), Contains("[DEBUG] SWITCH: overtaken by a later switch (target=2)"));
}

TEST_F(Switching, AWayBackIsNotTakenForAnArrival) {
  start(left);
  const auto desktops = Spaces::enumerate().desktops;
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedSetCurrentSpace] = 100ms; });
  Spaces::switchWithoutOverlay(desktops[1]);
  // Still current then, but not for long.
  sim->time().outside(20ms, [&] { Spaces::switchWithoutOverlay(desktops[0]); });
  sim->time().runUntilIdle();
  EXPECT_EQ(world().currentSpace("left"), 1u);
}

TEST_F(Switching, EachWayToMoveAWindowIsTriedInTurn) {
  const char* methods[] = {"SLSBridgedMoveWindowsToManagedSpaceOperation", "SLSMoveWindowsToManagedSpace",
                           "SLSSetWindowListWorkspace (compat ID)", "SLSAddWindowsToSpaces+SLSRemoveWindowsFromSpaces"};
  for (int ignored = 0; ignored <= 4; ++ignored) {
    SCOPED_TRACE(ignored);
    start("left 960x1080 | A* [Editor] B");
    const WindowID window = Spaces::ids(1).at(0);
    fault([&](SimulatedFaults& faults) { faults.ignoreMoveMethods(ignored); });
    (void)takeLog();
    EXPECT_EQ(Spaces::move(window, 2), ignored < 4);
    EXPECT_EQ(world().spacesOf(window), std::vector<SpaceID>{ignored < 4 ? 2u : 1u});
    const std::string id = std::to_string(window);
    EXPECT_THAT(takeLog(),
                ElementsAre(ignored < 4 ? "[INFO] MOVE OK [" + id + "] -> space 2 VIA " + methods[ignored]
                                        : "[ERROR] MOVE FAILED [" + id + "] -> space 2 (likely SIP / newer macOS)"));
    const auto compat = world().calls(Operation::spaceSetCompatID);
    if (ignored >= 2) {
      EXPECT_EQ(compat.back(), "spaceSetCompatID(2, 0)");
    } else {
      EXPECT_THAT(compat, IsEmpty());
    }
  }
}

TEST_F(Switching, AWindowThatIsGoneFailsEveryCheck) {
  start("left 960x1080 | A* [Editor] B");
  const WindowID window = Spaces::ids(1).at(0);
  world().beforeNext(Operation::bridgedMoveWindows, [&] { world().removeWindow(window); });
  EXPECT_FALSE(Spaces::move(window, 2));
  EXPECT_TRUE(world().asked(Operation::removeWindowsFromSpaces));
}

}  // namespace
}  // namespace tessaspaces
