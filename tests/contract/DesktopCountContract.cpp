#include <algorithm>

#include "contract/ContractTest.h"
#include "contract/SimulatedDriver.h"
#ifdef TESSASPACES_CONTRACT_X11
#include "contract/X11Driver.h"
#endif

namespace tessaspaces::contract {

using testing::ElementsAre;
using testing::SizeIs;

/// Desktops come and go because the program asks for it.
class DesktopCountContract : public Contract {
 protected:
  /// Desktops are known by their numbers, so that those behind a removed one get the ids before theirs.
  bool numbered() {
    const auto all = display().spaces.value_or(std::vector<ManagedSpace>());
    return !all.front().uuid && all.back().id64 == all.size();
  }
  std::vector<std::string> names() {
    std::vector<std::string> texts;
    for (const auto& space : display().spaces.value_or(std::vector<ManagedSpace>())) {
      texts.push_back(space.name.value_or(""));
    }
    return texts;
  }
  /// One window on each of the first display's desktops.
  std::vector<WindowID> fill() {
    std::vector<WindowID> windows;
    for (int desktop = 0; desktop < desktopsPerDisplay; ++desktop) {
      windows.push_back(driver->open({.title = "on " + std::to_string(desktop), .desktop = desktop}));
    }
    return windows;
  }
};

TEST_P(DesktopCountContract, OneMoreComesAfterTheLast) {
  start();
  const auto windows = fill();
  const auto before = spaces();
  Listener announced(server().spacesChanged);
  EXPECT_TRUE(server().addSpace(identifier()));
  EXPECT_TRUE(driver->until([&] { return spaces().size() == before.size() + 1 && announced.hears(); }));
  driver->settle();
  const auto after = spaces();
  ASSERT_THAT(after, SizeIs(desktopsPerDisplay + 1));
  EXPECT_EQ(std::vector(after.begin(), after.end() - 1), before);
  for (std::size_t i = 0; i < windows.size(); ++i) EXPECT_THAT(spacesOf(windows[i]), ElementsAre(before[i]));
  EXPECT_TRUE(switchTo(after.back()));
  EXPECT_TRUE(driver->until([&] { return current() == after.back(); }));
  EXPECT_FALSE(server().addSpace("no such display"));
}

TEST_P(DesktopCountContract, OneInTheMiddleGoesAndTheOthersStayWhatTheyAre) {
  constexpr std::size_t removed = 1;
  for (const int shown : {0, 1, 2, 3}) {
    SCOPED_TRACE("desktop " + std::to_string(shown) + " is shown");
    start();
    const auto windows = fill();
    const auto sticky = driver->open({.title = "sticky"});
    driver->makeSticky(sticky);
    driver->showDesktop(shown);
    const auto before = spaces();
    const auto named = names();
    const bool numbers = numbered();
    ASSERT_TRUE(driver->until([&] { return current() == before[static_cast<std::size_t>(shown)]; }));

    EXPECT_TRUE(server().removeSpace(identifier(), before[removed]));
    ASSERT_TRUE(driver->until([&] { return spaces().size() == before.size() - 1; }));
    driver->settle();
    // The desktops by where they were before; what was on the removed one is on a neighbour.
    const std::vector<SpaceID> now = numbers ? std::vector{before[0], before[1], before[1], before[2]}
                                             : std::vector{before[0], before[0], before[2], before[3]};
    EXPECT_THAT(spaces(), ElementsAre(now[0], now[2], now[3]));
    EXPECT_EQ(current(), now[static_cast<std::size_t>(shown)]);
    for (std::size_t i = 0; i < windows.size(); ++i) EXPECT_THAT(spacesOf(windows[i]), ElementsAre(now[i])) << i;
    EXPECT_THAT(spacesOf(sticky), SizeIs(desktopsPerDisplay - 1));
    EXPECT_TRUE(isOnScreen(sticky));
    EXPECT_THAT(names(), ElementsAre(named[0], named[2], named[3]));
  }
}

TEST_P(DesktopCountContract, TheLastGoesWhileItIsShown) {
  start();
  const auto windows = fill();
  const auto before = spaces();
  driver->showDesktop(desktopsPerDisplay - 1);
  ASSERT_TRUE(driver->until([&] { return current() == before.back(); }));
  EXPECT_TRUE(server().removeSpace(identifier(), before.back()));
  const std::vector left(before.begin(), before.end() - 1);
  EXPECT_TRUE(driver->until([&] { return spaces() == left && current() == left.back(); }));
  EXPECT_TRUE(driver->until([&] { return spacesOf(windows.back()) == std::vector{left.back()}; }));
  EXPECT_FALSE(server().removeSpace(identifier(), before.back())) << "it is gone";
  EXPECT_FALSE(server().removeSpace("no such display", left.front()));
}

TEST_P(DesktopCountContract, AllButOneGoOneAfterTheOther) {
  start();
  const auto windows = fill();
  const auto display = identifier();
  for (auto count = spaces().size(); count > 1; --count) {
    EXPECT_TRUE(server().removeSpace(display, spaces().front()));
    ASSERT_TRUE(driver->until([&] { return spaces().size() == count - 1; }));
  }
  driver->settle();
  EXPECT_FALSE(server().removeSpace(display, spaces().front())) << "a display keeps one";
  EXPECT_THAT(spaces(), ElementsAre(current()));
  for (const auto window : windows) {
    EXPECT_THAT(spacesOf(window), ElementsAre(current()));
    EXPECT_TRUE(isOnScreen(window));
  }
}

TEST_P(DesktopCountContract, ADisplayWithDesktopsOfItsOwnKeepsItsNeighboursAsTheyAre) {
  start({{"west", 0, 0, 960, 1080}, {"east", 960, 0, 960, 1080}});
  if (driver->sharedDesktops()) return;
  const auto others = spaces(0);
  const auto otherCurrent = current(0);
  const auto before = spaces(1);
  EXPECT_TRUE(server().addSpace(identifier(1)));
  ASSERT_TRUE(driver->until([&] { return spaces(1).size() == before.size() + 1; }));
  driver->settle();
  const auto grown = spaces(1);
  EXPECT_EQ(std::vector(grown.begin(), grown.end() - 1), before);
  EXPECT_TRUE(server().removeSpace(identifier(1), before.front()));
  ASSERT_TRUE(driver->until([&] { return spaces(1).size() == before.size(); }));
  driver->settle();
  EXPECT_EQ(spaces(1), std::vector(grown.begin() + 1, grown.end()));
  EXPECT_EQ(spaces(0), others);
  EXPECT_EQ(current(0), otherCurrent);
  EXPECT_FALSE(server().removeSpace(identifier(0), grown.back())) << "it is another display's";

  // What i3 would call it belongs to the other display, by the user's configuration.
  const auto there = spaces(1);
  const auto shownThere = current(1);
  EXPECT_TRUE(server().addSpace(identifier(0)));
  EXPECT_TRUE(driver->until([&] { return spaces(0).size() == others.size() + 1 && current(1) == shownThere; }));
  driver->settle();
  EXPECT_EQ(spaces(1), there);
  EXPECT_EQ(current(1), shownThere);
}

INSTANTIATE_TEST_SUITE_P(Simulated, DesktopCountContract, testing::Values(simulatedBackend()),
                         testing::PrintToStringParamName());
#ifdef TESSASPACES_CONTRACT_X11
INSTANTIATE_TEST_SUITE_P(X11, DesktopCountContract, testing::ValuesIn(x11Backends()),
                         testing::PrintToStringParamName());
#endif

}  // namespace tessaspaces::contract
