#include "contract/ContractTest.h"

namespace tessaspaces::contract {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

const std::vector<Monitor> sideBySide{{"left", 0, 0, 960, 1080}, {"right", 960, 0, 960, 540}};

std::vector<std::string> identifiersOf(const std::vector<ScreenRef>& screens) {
  std::vector<std::string> identifiers;
  for (const auto& screen : screens) identifiers.push_back(screen->uuid.value_or(""));
  return identifiers;
}

bool contains(const Rect& outer, const Rect& inner) {
  return outer.intersection(inner) == inner;
}

}  // namespace

TEST_P(Contract, DisplaysAreTheScreens) {
  for (const auto& monitors : {std::vector<Monitor>{{"main"}}, sideBySide}) {
    start(monitors);
    const auto screens = platform().screens().screens();
    ASSERT_THAT(screens, SizeIs(monitors.size()));
    const auto displays = server().copyManagedDisplaySpaces();
    ASSERT_TRUE(displays.has_value());
    std::vector<std::string> identifiers;
    for (const auto& display : *displays) identifiers.push_back(display.displayIdentifier.value_or(""));
    EXPECT_EQ(identifiers, identifiersOf(screens));
    EXPECT_THAT(identifiers, Not(Contains("")));
    EXPECT_THAT(std::set(identifiers.begin(), identifiers.end()), SizeIs(screens.size()));

    std::set<DisplayID> numbers;
    for (const auto& screen : screens) {
      ASSERT_TRUE(screen->displayID.has_value());
      EXPECT_NE(*screen->displayID, 0U);
      numbers.insert(*screen->displayID);
      EXPECT_TRUE(contains(screen->frame, screen->visibleFrame)) << screen->name;
      EXPECT_FALSE(screen->visibleFrame.isEmpty());
      EXPECT_GT(screen->scale, 0);
      EXPECT_FALSE(screen->inMirrorSet);
    }
    EXPECT_THAT(numbers, SizeIs(screens.size()));
    const auto main = platform().screens().mainScreen();
    ASSERT_NE(main, nullptr);
    EXPECT_THAT(identifiers, Contains(main->uuid.value_or("")));
  }
}

TEST_P(Contract, FramesAndPointerCountFromTheBottomLeftOfTheFirstScreen) {
  start(sideBySide);
  const auto screens = platform().screens().screens();
  ASSERT_THAT(screens, SizeIs(2));
  EXPECT_EQ(screens[0]->frame, (Rect{0, 0, 960, 1080}));
  EXPECT_EQ(screens[1]->frame, (Rect{960, 540, 960, 540}));

  struct Case {
    int x, y;
    Point pointer;
    std::size_t screen;
  };
  for (const auto& each : {Case{0, 0, {0, 1079}, 0}, Case{959, 1079, {959, 0}, 0}, Case{960, 0, {960, 1079}, 1},
                           Case{1200, 539, {1200, 540}, 1}}) {
    driver->movePointer(each.x, each.y);
    const auto pointer = platform().screens().pointer();
    EXPECT_EQ(pointer, each.pointer) << each.x << ", " << each.y;
    EXPECT_TRUE(screens[each.screen]->frame.contains(pointer)) << each.x << ", " << each.y;
  }
}

TEST_P(Contract, MonitorsComeAndGoAndAreRecognisedAgain) {
  start({sideBySide[0]});
  const auto alone = identifiersOf(platform().screens().screens());
  ASSERT_THAT(alone, SizeIs(1));
  Listener changes(platform().screens().changed);
  const auto plugged = [&](const std::vector<Monitor>& monitors) {
    driver->setMonitors(monitors);
    EXPECT_TRUE(driver->until([&] {
      return changes.hears() && platform().screens().screens().size() == monitors.size() &&
             server().copyManagedDisplaySpaces().value_or(std::vector<ManagedDisplay>{}).size() == monitors.size();
    }));
    driver->settle();
    changes.heard();
    return identifiersOf(platform().screens().screens());
  };

  const auto both = plugged(sideBySide);
  ASSERT_THAT(both, SizeIs(2));
  EXPECT_EQ(both[0], alone[0]);
  const auto displayID = platform().screens().screens()[1]->displayID;
  EXPECT_EQ(plugged({sideBySide[0]}), alone);
  EXPECT_EQ(plugged(sideBySide), both);
  EXPECT_EQ(platform().screens().screens()[1]->displayID, displayID);

  // Only larger: the same screens, and still a change.
  auto larger = sideBySide;
  larger[1].height = 1080;
  driver->setMonitors(larger);
  EXPECT_TRUE(driver->until([&] {
    return changes.hears() && platform().screens().screens()[1]->frame == Rect{960, 0, 960, 1080};
  }));
  EXPECT_EQ(identifiersOf(platform().screens().screens()), both);
}

TEST_P(Contract, DesktopsOfTwoDisplays) {
  start(sideBySide);
  const auto left = spaces(0);
  const auto right = spaces(1);
  ASSERT_GE(left.size(), 2U);
  ASSERT_GE(right.size(), 2U);
  if (driver->sharedDesktops()) {
    EXPECT_EQ(left, right);
  } else {
    for (const auto space : right) EXPECT_THAT(left, Not(Contains(space)));
  }

  const auto rightBefore = current(1);
  EXPECT_TRUE(switchTo(left[1]));
  EXPECT_TRUE(driver->until([&] { return current(0) == left[1]; }));
  driver->settle();
  EXPECT_EQ(current(1), driver->sharedDesktops() ? left[1] : rightBefore);

  EXPECT_TRUE(server().performBridged(SetCurrentSpace{identifier(1), right.back()}));
  EXPECT_TRUE(driver->until([&] { return current(1) == right.back(); }));
  driver->settle();
  EXPECT_EQ(current(0), driver->sharedDesktops() ? right.back() : left[1]);
}

}  // namespace tessaspaces::contract
