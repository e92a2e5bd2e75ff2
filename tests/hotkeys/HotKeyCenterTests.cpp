#include <gmock/gmock.h>

#include "hotkeys/HotKeyCenter.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;

constexpr KeyCombo rightKey{124, KeyCombo::control | KeyCombo::option};
constexpr KeyCombo leftKey{123, KeyCombo::control | KeyCombo::option};

class HotKeys : public CoreTest {
 protected:
  void press(KeyCombo combo) {
    sim->pressKey(combo);
    sim->time().runUntilIdle();
  }
  HotKeyCenter center;
  int presses = 0;
};

TEST_F(HotKeys, RunTheirActionOnTheMainQueue) {
  start("left 960x1080 | A*");
  EXPECT_TRUE(center.registerHotKey(rightKey, "change space right", [&] { ++presses; }));
  EXPECT_FALSE(center.registerHotKey(KeyCombo{124, 0}, "off", [&] { ++presses; }));
  sim->pressKey(rightKey);
  EXPECT_EQ(presses, 0) << "not from within the platform's callback";
  sim->time().runUntilIdle();
  EXPECT_EQ(presses, 1);
  press(leftKey);
  EXPECT_EQ(presses, 1);
  EXPECT_TRUE(center.failures().empty());
}

TEST_F(HotKeys, ARefusalIsLoggedAndTheOthersGoOn) {
  start("left 960x1080 | A*");
  sim->takeKey(leftKey);
  EXPECT_FALSE(center.registerHotKey(leftKey, "change space left", [] {}));
  EXPECT_TRUE(center.registerHotKey(rightKey, "change space right", [&] { ++presses; }));
  EXPECT_FALSE(center.registerHotKey(rightKey, "again", [] {})) << "the first keeps the key";
  EXPECT_THAT(takeLog(),
              ElementsAre("[ERROR] HOTKEY: registration 'change space left' (⌃⌥←) FAILED, status=10",
                          testing::StartsWith("[ERROR] HOTKEY: registration 'again' (⌃⌥→) FAILED, status=")));
  ASSERT_EQ(center.failures().size(), 2u);
  EXPECT_EQ(center.failures()[0].combo, leftKey);
  press(rightKey);
  EXPECT_EQ(presses, 1);
}

TEST_F(HotKeys, APressUnderWayDoesNotReachTheNextSet) {
  start("left 960x1080 | A*");
  center.registerHotKey(rightKey, "old", [&] { presses += 100; });
  sim->pressKey(rightKey);
  center.unregisterAll();
  center.registerHotKey(leftKey, "new", [&] { ++presses; });
  sim->time().runUntilIdle();
  EXPECT_EQ(presses, 0);
  press(rightKey);
  EXPECT_EQ(presses, 0);
  press(leftKey);
  EXPECT_EQ(presses, 1);
}

TEST_F(HotKeys, WhoeverHasTheKeyboardHandsCombosIn) {
  start("left 960x1080 | A*");
  sim->takeKey(leftKey);
  center.registerHotKey(leftKey, "refused", [&] { presses += 100; });
  center.registerHotKey(rightKey, "had", [&] { ++presses; });
  EXPECT_FALSE(center.press(leftKey)) << "another program's stays that program's";
  EXPECT_TRUE(center.press(rightKey));
  EXPECT_EQ(presses, 1);
}

TEST_F(HotKeys, AnActionMayReplaceTheWholeSet) {
  start("left 960x1080 | A*");
  center.registerHotKey(rightKey, "old", [&] {
    center.unregisterAll();
    center.registerHotKey(rightKey, "new", [&] { presses += 10; });
    ++presses;
  });
  press(rightKey);
  press(rightKey);
  EXPECT_EQ(presses, 11);
}

}  // namespace
}  // namespace tessaspaces
