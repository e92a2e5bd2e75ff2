#include <gmock/gmock.h>

#include "model/HotkeyCommands.h"
#include "model/Snapshot.h"
#include "settings/Settings.h"
#include "support/CoreTest.h"
#include "support/YabaiClient.h"

namespace tessaspaces {
namespace {

using enum GridDirection;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class Commands : public CoreTest {
 protected:
  SpaceID current(std::string_view display = "left") { return world().currentSpace(display); }
  /// Runs the command to its end; the lines that the command itself wrote.
  std::vector<std::string> run(const std::function<bool()>& command, bool expected = true) {
    (void)takeLog();
    EXPECT_EQ(command(), expected);
    sim->time().runUntilIdle();
    std::vector<std::string> lines;
    for (auto& line : takeLog()) {
      if (line.find("HOTKEY: ") != std::string::npos) lines.push_back(std::move(line));
    }
    return lines;
  }
};

constexpr auto sixDesktops = "left 960x1080 | A* B C D / E F ; right 960x1080 | X Y*";

TEST_F(Commands, StepThroughTheGridOfTheDisplayUnderThePointer) {
  start(sixDesktops);
  world().setPointer({10, 10});
  EXPECT_THAT(run([] { return Spaces::switchToNeighbor(right); }),
              ElementsAre("[DEBUG] HOTKEY: change space right — from position 0 to 1"));
  EXPECT_EQ(current(), 2u);
  (void)run([] { return Spaces::switchToNeighbor(down); });
  EXPECT_EQ(current(), 6u);
  EXPECT_THAT(run([] { return Spaces::switchToNeighbor(down); }, false),
              ElementsAre("[DEBUG] HOTKEY: at grid edge (down), not switching anywhere"));
  EXPECT_EQ(current(), 6u);
  (void)run([] { return Spaces::switchToNeighbor(right); });
  EXPECT_EQ(current(), 1u) << "the last continues at the first";
  EXPECT_EQ(current("right"), 8u);

  world().setPointer({1000, 10});
  (void)run([] { return Spaces::switchToNeighbor(left); });
  EXPECT_EQ(current("right"), 7u);
  EXPECT_EQ(current(), 1u);
}

TEST_F(Commands, EachDisplayHasItsOwnGridShape) {
  start(sixDesktops);
  Settings::setGridColumns(2, "left");
  world().setPointer({10, 10});
  (void)run([] { return Spaces::switchToNeighbor(down); });
  EXPECT_EQ(current(), 3u);
}

TEST_F(Commands, JumpToADesktopByItsNumber) {
  start(sixDesktops);
  world().setPointer({10, 10});
  EXPECT_THAT(run([] { return Spaces::switchToDesktop(4); }),
              ElementsAre("[DEBUG] HOTKEY: change space directly to desktop 4"));
  EXPECT_EQ(current(), 4u);
  for (const int number : {0, -1, 7}) {
    EXPECT_THAT(run([&] { return Spaces::switchToDesktop(number); }, false),
                ElementsAre("[WARNING] HOTKEY: desktop number " + std::to_string(number) + " doesn't exist (have 6)"));
  }
  EXPECT_EQ(current(), 4u);
}

TEST_F(Commands, RefuseWithoutADisplayOrACurrentDesktop) {
  start("left 960x1080 | A B Movie!*");
  EXPECT_THAT(run([] { return Spaces::switchToNeighbor(right); }, false),
              ElementsAre("[ERROR] HOTKEY: could not determine current desktop"));
  world().edit([](WorldState& state) { state.displays[0].screenHasIdentifier = false; });
  for (const auto& command : std::vector<std::function<bool()>>{
           [] { return Spaces::switchToNeighbor(right); }, [] { return Spaces::switchToDesktop(1); },
           [] { return Spaces::moveFocusedWindowToNeighbor(up); }}) {
    EXPECT_THAT(run(command, false), ElementsAre("[ERROR] HOTKEY: no display under the cursor"));
  }
  EXPECT_FALSE(world().asked(Operation::bridgedShowSpaces));
}

TEST_F(Commands, CarryTheFocusedWindowAndStay) {
  start("left 960x1080 | A* [Editor Mail] B C D");
  const WindowID mail = Spaces::ids(1).at(1);
  world().focusWindow(mail);
  const std::string id = std::to_string(mail);
  const auto move = [this] {
    const auto before = platform().dispatch().now();
    const bool accepted = Spaces::moveFocusedWindowToNeighbor(right);
    EXPECT_TRUE(world().asked(Operation::bridgedMoveWindows)) << "at once";
    EXPECT_EQ(platform().dispatch().now(), before) << "the caller does not wait for the window";
    return accepted;
  };
  EXPECT_THAT(run(move), ElementsAre("[INFO] HOTKEY: move window " + id + " to desktop 2 OK"));
  EXPECT_THAT(world().spacesOf(mail), ElementsAre(2u));
  EXPECT_EQ(current(), 1u);

  world().focusWindow(Spaces::ids(1).at(0));
  world().editFaults([](SimulatedFaults& faults) { faults.ignoreMoveMethods(4); });
  world().edit([](WorldState& state) { state.carriesDraggedWindow = false; });
  EXPECT_THAT(run([] { return Spaces::moveFocusedWindowToNeighbor(right); }), Contains(HasSubstr("FAILED")));
  EXPECT_THAT(run([] { return Spaces::moveFocusedWindowToNeighbor(down); }, false),
              ElementsAre("[DEBUG] HOTKEY: move window — at grid edge (down), doing nothing"));
  world().setFrontmost(std::nullopt);
  EXPECT_THAT(run([] { return Spaces::moveFocusedWindowToNeighbor(right); }, false),
              ElementsAre("[WARNING] HOTKEY: move window — no focused window found"));
}

TEST_F(Commands, OldSystemsCannotCarryWindows) {
  const YabaiClient client(folder);  // not installed
  start("left 960x1080 | A* [Editor] B", {26, 9});
  world().focusWindow(Spaces::ids(1).at(0));
  EXPECT_THAT(run([] { return Spaces::moveFocusedWindowToNeighbor(right); }, false),
              ElementsAre("[WARNING] HOTKEY: move window requires yabai (macOS won't otherwise allow moving another "
                          "app's window between Spaces)"));
}

}  // namespace
}  // namespace tessaspaces
