// What the simulated platform can do beyond the contract: worlds as text, faults on demand, virtual time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/simulated/SimulatedPlatform.h"
#include "platform/simulated/WorldText.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(SimulatedWorldText, DescribesDisplaysDesktopsAndWindows) {
  const auto platform =
      SimulatedPlatform::fromText("left 960x1080 builtin | A B*[mail editor] F! / - ; below 800x600+100+1080|X[mail]Y");
  ASSERT_TRUE(platform);
  const auto state = platform->world().state();
  ASSERT_EQ(state->displays.size(), 2U);
  const auto& left = state->displays[0];
  EXPECT_TRUE(left.builtIn);
  ASSERT_EQ(left.spaces.size(), 4U);
  EXPECT_EQ(left.current, 2U);
  EXPECT_EQ(left.spaces[2].reported.type, 4);
  EXPECT_EQ(left.spaces[3].reported.name, std::nullopt);
  EXPECT_EQ(state->displays[1].bounds, (Rect{100, 1080, 800, 600}));
  EXPECT_EQ(state->displays[1].current, platform->world().spaceNamed("X"));

  const auto onB = platform->windowServer().copyWindowsOnSpace(2);
  ASSERT_EQ(onB->size(), 2U);
  EXPECT_EQ(state->window(onB->front())->reported.name, "mail") << "front to back as written";
  const auto onX = platform->windowServer().copyWindowsOnSpace(platform->world().spaceNamed("X"));
  EXPECT_EQ(state->window(onX->front())->pid, state->window(onB->front())->pid) << "one application of a name";
  EXPECT_TRUE(platform->applications().running(state->window(onB->front())->pid));
}

TEST(SimulatedWorldText, SaysWhatIsWrongAndWhere) {
  struct Case {
    const char* text;
    const char* reason;
  };
  for (const auto& each :
       {Case{"", "display 1: a name is missing"}, Case{"left | A", "'left': a size"}, Case{"left 960 | A", "a size"},
        Case{"left 0x5 | A", "not positive"}, Case{"left 10x10+5+ | A", "no size with a position"},
        Case{"left 10x10+1+2+3 | A", "no size with a position"}, Case{"left 10x10 A", "'|'"},
        Case{"left 10x10 | / ", "no desktop"}, Case{"left 10x10 | A* B*", "two desktops"},
        Case{"left 10x10 | *", "name of a desktop"}, Case{"left 10x10 | A[mail", "']'"},
        Case{"left 10x10 | A ; left 10x10 | B", "'left': the name is used twice"},
        Case{"left 10x10 | A ;", "display 2: a name"}, Case{"left infx5 | A", "a size"}}) {
    std::string error;
    EXPECT_EQ(SimulatedPlatform::fromText(each.text, &error), nullptr) << each.text;
    EXPECT_THAT(error, HasSubstr(each.reason)) << each.text;
  }
}

TEST(SimulatedFaultsTest, SwitchesFailAsTold) {
  struct Case {
    const char* name;
    std::function<void(SimulatedFaults&)> fault;
    bool accepted;
    SpaceID at0ms, at50ms;
  };
  const auto set = Operation::bridgedSetCurrentSpace;
  for (const auto& each : std::vector<Case>{
           {"none", [](auto&) {}, true, 2, 2},
           {"unavailable", [](auto& faults) { faults.refuseBridged(); }, false, 1, 1},
           {"ignored", [&](auto& faults) { faults.ignored = {set}; }, true, 1, 1},
           {"late",
            [&](auto& faults) {
              faults.delayed = {{set, 30ms}};
            },
            true, 1, 2},
           {"elsewhere",
            [&](auto& faults) {
              faults.landsOn = {{set, 3}};
            },
            true, 3, 3},
           {"no answer", [](auto& faults) { faults.unanswered = {Operation::managedDisplayGetCurrentSpace}; }, true, 0,
            0},
       }) {
    SCOPED_TRACE(each.name);
    const auto platform = SimulatedPlatform::fromText("left 10x10 | A* B C");
    platform->world().editFaults(each.fault);
    auto& server = platform->windowServer();
    EXPECT_EQ(server.performBridged(SetCurrentSpace{"left", 2}), each.accepted);
    EXPECT_EQ(server.managedDisplayGetCurrentSpace("left"), each.at0ms);
    platform->dispatch().sleep(50ms);
    EXPECT_EQ(server.managedDisplayGetCurrentSpace("left"), each.at50ms);
    EXPECT_THAT(platform->world().calls(set), ElementsAre("bridgedSetCurrentSpace(left, 2)"));
  }
}

TEST(SimulatedFaultsTest, AWindowVanishesHalfWay) {
  const auto platform = SimulatedPlatform::fromText("left 10x10 | A*[mail] B");
  const auto window = platform->windowServer().copyWindowsOnSpace(1)->front();
  platform->world().beforeNext(Operation::bridgedMoveWindows, [&] { platform->world().removeWindow(window); });
  EXPECT_TRUE(platform->windowServer().performBridged(MoveWindowsToSpace{{window}, 2}));
  EXPECT_THAT(platform->windowServer().copySpacesForWindows(7, std::vector{window}), testing::Optional(ElementsAre()));
}

TEST(SimulatedVirtualTime, MainThreadSleepHoldsUpTheMainQueueAlone) {
  VirtualDispatch dispatch;
  std::vector<std::string> ran;
  const auto note = [&](const char* what) {
    ran.push_back(
        what + std::to_string(
                   std::chrono::duration_cast<std::chrono::milliseconds>(dispatch.now().time_since_epoch()).count()));
  };
  dispatch.after(10ms, [&] { note("timer "); });
  dispatch.outside(20ms, [&] { note("outside "); });
  dispatch.background([&] {
    dispatch.sleep(15ms);
    note("job ");
  });
  dispatch.sleep(30ms);
  EXPECT_THAT(ran, ElementsAre("job 15", "outside 20"));
  dispatch.runUntilIdle();
  EXPECT_THAT(ran, ElementsAre("job 15", "outside 20", "timer 30"));
}

TEST(SimulatedVirtualTime, ASleepingJobSeesEverythingAtItsTime) {
  VirtualDispatch dispatch;
  std::vector<Duration> ticks;
  const auto timer = dispatch.every(10ms, [&] { ticks.push_back(dispatch.now().time_since_epoch()); });
  dispatch.background([&] {
    for (int i = 0; i < 4; ++i) dispatch.sleep(7ms);
  });
  dispatch.advance(1ms);
  EXPECT_THAT(ticks, ElementsAre(10ms, 20ms));
  EXPECT_EQ(dispatch.now().time_since_epoch(), 28ms) << "the job slept beyond the end";
  EXPECT_TRUE(dispatch.isIdle());
}

}  // namespace
}  // namespace tessaspaces
