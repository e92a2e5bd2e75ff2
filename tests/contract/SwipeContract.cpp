// Swipes, as the program makes them, through the platform's events.
#include <atomic>

#include "bridges/GestureSwitch.h"
#include "bridges/SwipeEvents.h"
#include "contract/ContractTest.h"
#include "contract/SimulatedDriver.h"
#ifdef TESSASPACES_CONTRACT_X11
#include "contract/X11Driver.h"
#endif
#include "settings/ConfigStore.h"
#include "support/TemporaryFolder.h"

namespace tessaspaces::contract {

using GestureSwitch::Direction;
using GestureSwitch::Phase;

class SwipeContract : public Contract {
 protected:
  void start(const std::vector<Monitor>& monitors = {{"main"}}) {
    Contract::start(monitors);
    setPlatform(&platform());
    driver->movePointer(100, 100);
  }
  ~SwipeContract() override { setPlatform(nullptr); }

  /// Towards the neighbour on that side, whatever the scrolling.
  void swipe(Direction side) { EXPECT_TRUE(GestureSwitch::swipe(fingers(side))); }
  Direction fingers(Direction side) {
    if (platform().preferences().naturalScrolling()) return side;
    return side == Direction::right ? Direction::left : Direction::right;
  }
  /// What becomes true, for the main thread, once the work has ended.
  std::shared_ptr<bool> inBackground(std::function<void()> work) {
    auto done = std::make_shared<bool>(false);
    auto& dispatch = platform().dispatch();
    dispatch.background([&dispatch, work = std::move(work), done] {
      work();
      dispatch.async([done] { *done = true; });
    });
    return done;
  }
  /// The display shows the space, and goes on showing it.
  bool staysOn(SpaceID space, std::size_t display = 0) {
    if (!driver->until([&] { return current(display) == space; })) return false;
    driver->settle();
    return current(display) == space;
  }
};

TEST_P(SwipeContract, ACompleteSwipeStepsOneDesktop) {
  start();
  const auto all = spaces();
  swipe(Direction::right);
  EXPECT_TRUE(staysOn(all[1])) << current();
  swipe(Direction::left);
  EXPECT_TRUE(staysOn(all[0])) << current();
  swipe(Direction::left);
  EXPECT_TRUE(staysOn(all[0])) << "there is none further left";
}

TEST_P(SwipeContract, EachSwipeOfABurstCounts) {
  start();
  const auto all = spaces();
  ASSERT_EQ(all.size(), 4U);
  for (int i = 0; i < 3; ++i) swipe(Direction::right);
  EXPECT_TRUE(staysOn(all[3])) << current();
  // The user goes elsewhere: what the swipes asked for before does not count any more.
  driver->showDesktop(0);
  EXPECT_TRUE(staysOn(all[0]));
  swipe(Direction::right);
  EXPECT_TRUE(staysOn(all[1])) << current();
  for (const auto side : {Direction::right, Direction::right, Direction::right, Direction::left}) swipe(side);
  EXPECT_TRUE(staysOn(all[2])) << current();
}

TEST_P(SwipeContract, AnythingLessIsNoSwipe) {
  start();
  const auto all = spaces();
  auto& input = platform().inputEvents();
  const auto companion = input.create();
  ASSERT_TRUE(companion);
  companion->setInteger(GestureSwitch::fieldCGSEventType, GestureSwitch::cgsEventGesture);
  const auto post = [&](std::initializer_list<Phase> phases, bool augmented = true, bool companions = true) {
    for (const auto phase : phases) {
      const auto bare = GestureSwitch::dockEvent(phase, fingers(Direction::right));
      input.post(augmented ? *GestureSwitch::augmented(*bare) : *bare);
      if (companions) input.post(*companion);
    }
  };
  post({Phase::began, Phase::changed});
  post({Phase::began, Phase::ended});
  post({Phase::changed, Phase::ended});
  post({Phase::began, Phase::changed, Phase::ended}, false);
  post({Phase::began, Phase::changed, Phase::ended}, true, false);
  driver->settle();
  EXPECT_EQ(current(), all[0]);
  EXPECT_EQ(input.recreate(std::vector<std::uint8_t>{0, 0, 0, 3}), nullptr);
  post({Phase::began, Phase::changed, Phase::ended});
  EXPECT_TRUE(staysOn(all[1]));
}

TEST_P(SwipeContract, TheDisplayUnderThePointerMoves) {
  start({{"left", 0, 0, 960, 1080}, {"right", 960, 0, 960, 1080}});
  const auto left = spaces(0);
  const auto right = spaces(1);
  const auto before = current(0);
  driver->movePointer(1200, 300);
  swipe(Direction::right);
  EXPECT_TRUE(staysOn(right[1], 1)) << current(1);
  EXPECT_EQ(current(0), driver->sharedDesktops() ? left[1] : before);
}

TEST_P(SwipeContract, ASwitchByGestureArrivesAndIsDrivenBack) {
  start();
  const tessaspaces::testing::TemporaryFolder settings;
  ConfigStore::useDirectory(settings.path());
  const auto all = spaces();
  const DesktopInfo target(all[3], identifier());
  bool moved = false;
  auto done = inBackground([&] { moved = GestureSwitch::perform(target); });
  ASSERT_TRUE(driver->until([&] { return *done; }));
  EXPECT_TRUE(moved);
  EXPECT_TRUE(staysOn(all[3])) << current();

  // Something drags the display away at once.
  switchTo(all[0]);
  ASSERT_TRUE(driver->until([&] { return current() == all[0]; }));
  std::atomic<bool> enough = false;
  done = inBackground([&] { GestureSwitch::settle(target, [&] { return enough.load(); }); });
  EXPECT_TRUE(driver->until([&] { return current() == all[3]; })) << current();
  enough = true;
  EXPECT_TRUE(driver->until([&] { return *done; }));
}

INSTANTIATE_TEST_SUITE_P(Simulated, SwipeContract, ::testing::Values(simulatedBackend()),
                         ::testing::PrintToStringParamName());
#ifdef TESSASPACES_CONTRACT_X11
INSTANTIATE_TEST_SUITE_P(X11, SwipeContract, ::testing::ValuesIn(x11Backends()), ::testing::PrintToStringParamName());
#endif

}  // namespace tessaspaces::contract
