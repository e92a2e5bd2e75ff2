#include <atomic>

#include "contract/ContractTest.h"

namespace tessaspaces::contract {

using namespace std::chrono_literals;
using testing::ElementsAre;

TEST_P(Contract, MainThreadWorkRunsLaterInTheOrderOfTheCalls) {
  start();
  auto& dispatch = platform().dispatch();
  EXPECT_TRUE(dispatch.isMainThread());
  std::vector<int> ran;
  dispatch.async([&] {
    ran.push_back(1);
    dispatch.async([&] { ran.push_back(4); });
  });
  dispatch.async([&] { ran.push_back(2); });
  dispatch.async([&] { ran.push_back(3); });
  EXPECT_TRUE(ran.empty()) << "never inside the call";
  dispatch.sync([&] { ran.push_back(0); });
  EXPECT_TRUE(driver->until([&] { return ran.size() == 5; }));
  EXPECT_THAT(ran, ElementsAre(0, 1, 2, 3, 4));
}

TEST_P(Contract, TimersKeepTheirOrderAndNeverComeEarly) {
  start();
  auto& dispatch = platform().dispatch();
  const auto begin = dispatch.now();
  std::vector<int> ran;
  const auto expectAfter = [&](Duration delay, int number) {
    dispatch.after(delay, [&, delay, number] {
      EXPECT_GE(dispatch.now() - begin, delay);
      EXPECT_TRUE(dispatch.isMainThread());
      ran.push_back(number);
    });
  };
  expectAfter(30ms, 3);
  expectAfter(0ms, 1);
  expectAfter(15ms, 2);

  int ticks = 0;
  RegistrationRef timer;
  timer = dispatch.every(5ms, [&] {
    EXPECT_GE(dispatch.now() - begin, 5ms * (ticks + 1));
    if (++ticks == 3) timer.reset();  // from within itself
  });
  int ticksOfLost = 0;
  dispatch.every(1ms, [&] { ++ticksOfLost; }).reset();
  EXPECT_TRUE(driver->until([&] { return ran.size() == 3 && ticks >= 3; }));
  EXPECT_THAT(ran, ElementsAre(1, 2, 3));
  EXPECT_EQ(ticks, 3);
  EXPECT_EQ(ticksOfLost, 0);
}

TEST_P(Contract, BackgroundJobsAreNotOnTheMainThreadAndCanReachIt) {
  start();
  auto& dispatch = platform().dispatch();
  std::atomic<bool> done = false;
  bool jobOnMain = true;
  bool syncOnMain = false;
  bool earlierWorkFirst = false;
  bool queued = false;
  Duration slept{};
  dispatch.background([&] {
    jobOnMain = dispatch.isMainThread();
    dispatch.async([&] { queued = true; });
    dispatch.sync([&] {
      syncOnMain = dispatch.isMainThread();
      earlierWorkFirst = queued;
    });
    const auto before = dispatch.now();
    dispatch.sleep(10ms);
    slept = dispatch.now() - before;
    dispatch.async([&] { done = true; });
  });
  EXPECT_TRUE(driver->until([&] { return done.load(); }));
  EXPECT_FALSE(jobOnMain);
  EXPECT_TRUE(syncOnMain);
  EXPECT_TRUE(earlierWorkFirst);
  EXPECT_GE(slept, 10ms);
}

TEST_P(Contract, ASleepingJobHoldsUpNeitherTheMainThreadNorOtherJobs) {
  start();
  auto& dispatch = platform().dispatch();
  int finished = 0;
  const auto finish = [&] { dispatch.async([&] { ++finished; }); };  // which also wakes the main thread
  std::atomic<bool> otherRan = false;
  std::atomic<bool> timerRan = false;
  bool sawOther = false;
  bool sawTimer = false;
  dispatch.background([&] {
    dispatch.after(5ms, [&] { timerRan = true; });
    for (int i = 0; i < 1000 && !(otherRan && timerRan); ++i) dispatch.sleep(5ms);
    sawOther = otherRan;
    sawTimer = timerRan;
    finish();
  });
  dispatch.background([&] {
    otherRan = true;
    finish();
  });
  EXPECT_TRUE(driver->until([&] { return finished == 2; }));
  EXPECT_TRUE(sawOther);
  EXPECT_TRUE(sawTimer);
}

}  // namespace tessaspaces::contract
