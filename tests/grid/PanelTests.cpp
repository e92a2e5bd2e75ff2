#include "bridges/YabaiBridge.h"
#include "grid/PanelTest.h"
#include "model/Snapshot.h"
#include "model/Switching.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Direction = GridPanelView::Zoom::Direction;

using Panel = PanelTest;

constexpr auto one = "left 960x1080 | A* [Mail Editor] B [Web] C";

TEST_F(Panel, ZoomsOutOfTheCurrentDesktopAndBackIntoIt) {
  startGrid(one);
  world().showSpace(2);
  grid->show(nullptr);
  auto& panel = view("left");
  ASSERT_TRUE(panel.zoom);
  EXPECT_EQ(panel.zoom->direction, Direction::out);
  EXPECT_EQ(panel.zoom->rect, panel.tile("B").content);
  EXPECT_EQ(panel.zoom->duration, 300ms) << "gridZoomSpeed";
  panel.finishZoom();

  Settings::setGridZoomSpeed(AnimationSpeed::slowest);
  grid->closeAnimated();
  EXPECT_FALSE(grid->isVisible());
  EXPECT_FALSE(panel.keyboard) << "given back before the zoom";
  ASSERT_TRUE(panel.zoom);
  EXPECT_EQ(panel.zoom->direction, Direction::in);
  EXPECT_EQ(panel.zoom->rect, panel.tile("B").content);
  EXPECT_EQ(panel.zoom->duration, 1s);
  EXPECT_TRUE(panel.isUp);
  panel.finishZoom();
  EXPECT_FALSE(panel.isUp);

  for (const bool ours : {true, false}) {
    Settings::setShowGridZoomAnimation(!ours);
    sim->setReduceMotion(!ours);
    grid->show(nullptr);
    EXPECT_FALSE(panel.zoom);
    grid->closeAnimated();
    EXPECT_FALSE(panel.isUp);
  }
}

TEST_F(Panel, AnOldEndDoesNotCloseANewOpening) {
  startGrid(one);
  open();
  auto& panel = view("left");
  // Opened again while it closes.
  grid->closeAnimated();
  const auto closing = *panel.zoom;
  grid->show(nullptr);
  EXPECT_TRUE(grid->isVisible());
  EXPECT_EQ(panel.zoom->direction, Direction::out);
  EXPECT_EQ(panel.openings, 2);
  panel.finishZoom();
  EXPECT_TRUE(panel.isUp);

  // Closed while it opens; what is clicked on the way out is meant for nothing.
  grid->close();
  grid->show(nullptr);
  grid->closeAnimated();
  EXPECT_EQ(panel.zoom->direction, closing.direction);
  panel.clickTile("C");
  panel.input.key(GridKey::enter);
  panel.finishZoom();
  EXPECT_FALSE(panel.isUp);
  advance(3s);
  EXPECT_EQ(world().currentSpace("left"), 1U);

  // Opened again while a switch has not ended: its end leaves the new opening alone.
  open();
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedSetCurrentSpace] = 300ms; });
  panel.clickTile("B");
  advance(50ms);
  EXPECT_FALSE(grid->isVisible());
  EXPECT_TRUE(panel.isUp) << "it stays until the new desktop is there";
  grid->show(nullptr);
  advance(3s);
  EXPECT_TRUE(grid->isVisible() && panel.isUp && panel.keyboard);
  EXPECT_TRUE(panel.tile("B").current);

  // Shown once more while it is open: no second opening.
  const int openings = panel.openings;
  panel.input.typed("mail");
  grid->show(nullptr);
  EXPECT_EQ(panel.openings, openings);
  EXPECT_EQ(panel.scene.filter, "mail");
}

TEST_F(Panel, SwitchesUnderItsOwnZoom) {
  startGrid(two);
  open();
  auto& panel = view("left");
  panel.clickTile("B");
  EXPECT_FALSE(panel.keyboard) << "let go before the switch";
  ASSERT_TRUE(panel.zoom && view("right").zoom);
  EXPECT_EQ(panel.zoom->rect, panel.tile("B").content);
  EXPECT_EQ(view("right").zoom->rect, view("right").tile("X").content) << "the other display stays where it is";
  EXPECT_FALSE(grid->isVisible());
  EXPECT_THAT(takeLog(), Contains("[DEBUG] ACTION DIAG: switchSpace(2)"));

  // The switch lands at once, the panel goes with the end of the zoom.
  advance(200ms);
  EXPECT_EQ(world().currentSpace("left"), 2U);
  EXPECT_TRUE(panel.isUp);
  panel.finishZoom();
  EXPECT_FALSE(panel.isUp);

  // It lands after the zoom: the panel stays until then.
  open();
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedSetCurrentSpace] = 400ms; });
  panel.clickTile("C");
  advance(250ms);
  panel.finishZoom();
  EXPECT_TRUE(panel.isUp);
  advance(300ms);
  EXPECT_FALSE(panel.isUp);
  EXPECT_EQ(world().currentSpace("left"), 3U);
}

TEST_F(Panel, RevealsNotBeforeMostOfTheZoom) {
  startGrid(one);
  Settings::setGridZoomSpeed(AnimationSpeed::slowest);
  open();
  auto& panel = view("left");
  panel.clickTile("B");
  advance(100ms);
  panel.finishZoom();
  EXPECT_EQ(world().currentSpace("left"), 2U);
  EXPECT_TRUE(panel.isUp) << "a window that draws its zoom too fast";
  advance(545ms);
  EXPECT_TRUE(panel.isUp);
  advance(10ms);
  EXPECT_FALSE(panel.isUp) << "0.65 of the second";

  // Without a zoom as soon as the switch has ended.
  Settings::setShowGridZoomAnimation(false);
  open();
  panel.clickTile("C");
  EXPECT_FALSE(panel.zoom);
  EXPECT_TRUE(panel.isUp);
  advance(20ms);
  EXPECT_FALSE(panel.isUp);
  EXPECT_EQ(world().currentSpace("left"), 3U);
}

TEST_F(Panel, OnOlderSystemsClosesIntoTheTileAtOnce) {
  startGrid(one, {26, 4});
  open();
  auto& panel = view("left");
  panel.clickTile("B");
  ASSERT_TRUE(panel.zoom);
  EXPECT_EQ(panel.zoom->rect, panel.tile("B").content);
  panel.finishZoom();
  EXPECT_FALSE(panel.isUp) << "it does not wait for the switch";
  advance(3s);
  EXPECT_EQ(world().currentSpace("left"), 2U);

  Settings::setShowGridZoomAnimation(false);
  open();
  panel.clickTile("C");
  EXPECT_FALSE(panel.isUp);
  advance(3s);
  EXPECT_EQ(world().currentSpace("left"), 3U);
}

TEST_F(Panel, BringsTheClickedWindowForward) {
  startGrid(one);
  open();
  view("left").click(view("left").window("B", id("Web")).rect.center());
  advance(3s);
  EXPECT_EQ(world().currentSpace("left"), 2U);
  EXPECT_EQ(world().state()->focused, id("Web"));

  // Not when the user has gone elsewhere meanwhile: that would take him back.
  world().showSpace(1);
  open();
  world().clearCalls();
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedSetCurrentSpace] = 300ms; });
  view("left").click(view("left").window("B", id("Web")).rect.center());
  advance(10ms);
  Spaces::switchWithoutOverlay(Spaces::enumerate().desktops[2]);
  advance(3s);
  EXPECT_EQ(world().currentSpace("left"), 3U);
  EXPECT_FALSE(world().asked(Operation::raiseWindow));
}

TEST_F(Panel, ASpaceThatIsNotThereIsAnErrorAndNothingElse) {
  startGrid(two);
  open();
  GridPanelController::shared.lock()->handle(GridActions::SwitchSpace{77});
  EXPECT_THAT(takeLog(),
              ElementsAre("[DEBUG] ACTION DIAG: switchSpace(77)", "[ERROR] SWITCH: space 77 not in snapshot"));
  EXPECT_TRUE(view("left").isUp && view("left").keyboard);
  world().removeWindow(id("Mail"));
  advance(500ms);
  EXPECT_THAT(view("left").windows("A"), ElementsAre(id("Editor"))) << "it follows the system as before";
}

TEST_F(Panel, SwitchChecksSayWhetherItHolds) {
  startGrid(one);
  const auto checks = [&] {
    std::vector<std::string> lines;
    for (auto& line : takeLog()) {
      if (line.find("SWITCH: check") != std::string::npos) lines.push_back(line);
    }
    return lines;
  };
  const auto goTo = [&](const char* label) {
    open();
    view("left").clickTile(label);
  };
  goTo("B");
  advance(4s);
  EXPECT_THAT(checks(), ElementsAre("[DEBUG] SWITCH: check after 1s — active=2 target=2 HOLDING"));

  // Taken back, and for good.
  goTo("C");
  advance(900ms);
  world().showSpace(1);
  world().setFrontmost(std::nullopt);
  advance(3s);
  EXPECT_THAT(checks(),
              ElementsAre("[DEBUG] SWITCH: check after 1s — active=1 target=3 not settled yet, checking again",
                          "[WARNING] SWITCH: check after 2.5s — active=1 target=3 method=bridged yabaiFocused=- "
                          "frontApp=? REVERTED"));

  // Late, but there.
  goTo("B");
  advance(900ms);
  world().showSpace(1);
  advance(500ms);
  world().showSpace(2);
  advance(3s);
  EXPECT_THAT(checks(),
              ElementsAre("[DEBUG] SWITCH: check after 1s — active=1 target=2 not settled yet, checking again",
                          AllOf(HasSubstr("[DEBUG] SWITCH: check after 2.5s"), HasSubstr(" HOLDING"))));

  // Two in a row: the first gives way.
  goTo("A");
  advance(300ms);
  goTo("C");
  advance(4s);
  EXPECT_THAT(checks(), ElementsAre("[DEBUG] SWITCH: check skipped — target=1 superseded by a later switch to 3",
                                    "[DEBUG] SWITCH: check after 1s — active=3 target=3 HOLDING"));
}

TEST_F(Panel, WaitsAMomentForTheKeyboard) {
  startGrid(one);
  open();
  auto& panel = view("left");
  grid->close();
  panel.keyboardIsElsewhere = true;
  grid->show(nullptr);
  EXPECT_TRUE(panel.scene.keyboard) << "it is expected to come";
  advance(100ms);
  panel.keyboardIsElsewhere = false;
  advance(50ms);
  EXPECT_TRUE(panel.keyboard);

  grid->close();
  panel.keyboardIsElsewhere = true;
  grid->show(nullptr);
  (void)takeLog();
  advance(400ms);
  EXPECT_THAT(takeLog(), Contains("[WARNING] GRID: keyboard held by another program"));
  EXPECT_FALSE(panel.scene.keyboard);
  panel.keyboardIsElsewhere = false;
  advance(400ms);
  EXPECT_TRUE(panel.keyboard && panel.scene.keyboard) << "as soon as it is let go of";

  grid->close();
  panel.keyboardIsElsewhere = true;
  grid->show(nullptr);
  advance(400ms);
  const int wishes = panel.keyboardWishes;
  panel.clickTile("B");
  advance(3s);
  EXPECT_EQ(world().currentSpace("left"), 2U) << "the mouse goes on";
  EXPECT_EQ(panel.keyboardWishes, wishes);

  // Closed while it waits.
  grid->show(nullptr);
  grid->close();
  panel.keyboardIsElsewhere = false;
  advance(1s);
  EXPECT_FALSE(panel.keyboard);
}

TEST_F(Panel, FollowsTheSystemWhileItIsOpen) {
  startGrid(one);
  open();
  auto& panel = view("left");
  const auto editor = id("Editor");
  advance(500ms);

  world().clearCalls();
  for (int i = 0; i < 5; ++i) {
    world().placeWindow(editor, static_cast<SpaceID>(1 + i % 3));
    advance(10ms);
  }
  world().removeWindow(id("Mail"));
  advance(200ms);
  EXPECT_THAT(panel.windows("A"), IsEmpty());
  EXPECT_THAT(panel.windows("B"), Contains(editor));
  EXPECT_LE(world().calls(Operation::copyManagedDisplaySpaces).size(), 3U) << "taken in together";

  const auto picture = std::make_shared<const Image>(Image{1, 1, {0xFF123456}});
  world().showSpace(2);
  const auto web = id("Web");
  sim->pictures().draw(web, picture);
  world().edit([&](WorldState& state) { state.window(web)->reported.name = "News"; });
  advance(2s);
  EXPECT_EQ(panel.window("B", web).picture, picture);
  EXPECT_EQ(panel.window("B", web).title, "News") << "titles change without a word";
  EXPECT_TRUE(panel.tile("B").current);

  fault([](SimulatedFaults& faults) { faults.unanswered.insert(Operation::copyManagedDisplaySpaces); });
  world().placeWindow(editor, 3);
  advance(2s);
  EXPECT_EQ(panel.scene.tiles.size(), 3U) << "no answer is no news";
  fault([](SimulatedFaults& faults) { faults = {}; });

  grid->close();
  const int drawn = panel.drawn;
  world().clearCalls();
  world().placeWindow(editor, 1);
  advance(5s);
  EXPECT_EQ(panel.drawn, drawn);
  EXPECT_FALSE(world().asked(Operation::copyWindowInfo)) << "nothing is asked while it is closed";
}

TEST_F(Panel, NamesWhatCoversADesktop) {
  startGrid(two);
  world().addApplication({777, "Player", std::nullopt});
  world().addWindow({.title = "Film", .pid = 777, .space = 2, .bounds = {0, 0, 960, 1080}, .fullScreen = true});
  world().addWindow({.title = "Nobody's", .pid = 778, .space = 5, .bounds = {960, 0, 960, 1080}, .fullScreen = true});
  open();
  advance(2s);
  EXPECT_EQ(view("left").tile("B").fullScreenApplication, "Player");
  EXPECT_EQ(view("left").tile("A").fullScreenApplication, "");
  EXPECT_EQ(view("right").tile("Y").fullScreenApplication, "Nobody's") << "an unknown application has its title";
}

TEST_F(Panel, ADragIsNotDisturbed) {
  startGrid(one);
  open();
  auto& panel = view("left");
  const auto grip = panel.window("B", id("Web")).rect.center();
  advance(300ms);
  panel.input.pointerMoved(grip);
  panel.input.pressed(GridButton::left, grip);
  panel.input.pointerMoved({grip.x + 30, grip.y});
  ASSERT_TRUE(panel.scene.carried);
  world().clearCalls();
  world().placeWindow(id("Mail"), 3);
  sim->pictures().draw(id("Editor"), std::make_shared<const Image>(Image{1, 1, {0xFF000000}}));
  advance(3s);
  EXPECT_FALSE(world().asked(Operation::copyWindowInfo) || world().asked(Operation::previews));
  EXPECT_THAT(panel.windows("A"), Contains(id("Mail")));

  panel.input.pressed(GridButton::right, grip);
  EXPECT_FALSE(panel.scene.carried);
  advance(300ms);
  EXPECT_THAT(panel.windows("C"), ElementsAre(id("Mail")));
  EXPECT_EQ(panel.window("A", id("Editor")).picture->width, 1) << "everything is taken in afterwards";
}

}  // namespace
}  // namespace tessaspaces
