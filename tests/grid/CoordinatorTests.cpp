#include "grid/GridSelfTest.h"
#include "grid/PanelTest.h"
#include "model/Snapshot.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using Coordinator = PanelTest;

TEST_F(Coordinator, ThePanelOfTheMainDisplayIsThereBeforeTheFirstOpening) {
  startGrid(two);
  ASSERT_THAT(views, SizeIs(1));
  EXPECT_FALSE(views[0]->isUp);
  EXPECT_FALSE(GridPanelController::shared.expired());
  EXPECT_FALSE(grid->isVisible());

  grid->prepare();
  advance(10ms);
  EXPECT_THAT(views, SizeIs(2)) << "and the others once it is prepared";
  EXPECT_EQ(views[0]->openings + views[1]->openings, 0);
  EXPECT_THAT(backgrounds.asked, SizeIs(5)) << "what is behind the windows is asked for ahead";
  EXPECT_EQ(backgrounds.refreshed, 1);
  EXPECT_TRUE(world().asked(Operation::beginCapture));

  world().clearCalls();
  grid->show(nullptr);
  EXPECT_THAT(world().calls(Operation::previews), SizeIs(1)) << "one question for the previews of all panels";
  EXPECT_THAT(world().calls(Operation::copyManagedDisplaySpaces), SizeIs(1)) << "and one snapshot";
  EXPECT_FALSE(world().asked(Operation::icon));
  EXPECT_FALSE(world().asked(Operation::running));
  EXPECT_TRUE(view("left").window("A", id("Mail")).picture);
}

TEST_F(Coordinator, OpensEveryDisplayWithTheKeyboardOnOne) {
  startGrid(two);
  const struct {
    const char* focusedOn;
    const char* keyboard;
  } cases[] = {{"", "left"}, {"right", "right"}, {"left", "left"}};
  for (const auto& c : cases) {
    grid->show(screen(c.focusedOn));
    EXPECT_TRUE(grid->isVisible());
    for (const auto* name : {"left", "right"}) {
      EXPECT_TRUE(view(name).isUp);
      EXPECT_EQ(view(name).keyboard, std::string(name) == c.keyboard) << name << " of " << c.focusedOn;
      EXPECT_EQ(view(name).scene.keyboard, view(name).keyboard);
    }
    EXPECT_THAT(takeLog(), Contains("[DEBUG] GRID shown on 2 display(s), keyboard on " + std::string(c.keyboard)));
    grid->close();
    EXPECT_FALSE(grid->isVisible());
    EXPECT_FALSE(view("left").isUp || view("right").isUp || view("right").keyboard);
  }
  EXPECT_THAT(views, SizeIs(2)) << "the panels are kept";
}

TEST_F(Coordinator, AskedForElsewhereTheOpenGridPassesTheKeyboard) {
  startGrid(two);
  open("left");
  grid->show(screen("right"));
  EXPECT_FALSE(view("left").keyboard || view("left").scene.keyboard);
  EXPECT_TRUE(view("right").keyboard && view("right").scene.keyboard);
  EXPECT_EQ(view("left").openings, 1);
}

TEST_F(Coordinator, APanelMayGoInTheMiddleOfASwitch) {
  startGrid("left 960x1080 | A* ; right 960x1080 | X* Y [Chat]");
  open();
  fault([](SimulatedFaults& faults) { faults.delayed[Operation::bridgedSetCurrentSpace] = 300ms; });
  view("right").click(view("right").window("Y", id("Chat")).rect.center());
  advance(50ms);
  world().removeDisplay("right");
  advance(5s);
  EXPECT_THAT(views, SizeIs(1));
  EXPECT_TRUE(world().asked(Operation::raiseWindow)) << "what was to follow the switch follows";

  open();
  view("left").clickTile("X");
  advance(1ms);
  grid.reset();
  advance(5s);
  EXPECT_THAT(views, IsEmpty());
}

TEST_F(Coordinator, MirrorsCountOnce) {
  startGrid("lid 960x1080 builtin | A* B ; projector 960x1080 | X*");
  world().mirrorDisplay("lid", "projector");
  advance(10ms);
  open("projector");
  EXPECT_TRUE(view("lid").isUp) << "the built-in panel stands for both";
  EXPECT_TRUE(view("lid").keyboard);
  EXPECT_THAT(grid->visiblePanels(), SizeIs(1));
  EXPECT_THAT(view("lid").scene.tiles, Not(IsEmpty())) << "the desktops are listed under the one that is mirrored";

  startGrid("one 960x1080 | A* ; two 960x1080 | X*");
  world().mirrorDisplay("two", "one");
  advance(10ms);
  open("two");
  EXPECT_THAT(grid->visiblePanels(), SizeIs(1)) << "between external ones";
  EXPECT_TRUE(view("two").isUp && view("two").keyboard) << "on the one that was preferred";
}

TEST_F(Coordinator, NoDisplayNoGrid) {
  startGrid("left 960x1080 | A*");
  world().edit([](WorldState& state) { state.displays[0].screenHasNumber = false; });
  advance(10ms);
  (void)takeLog();
  grid->show(nullptr);
  EXPECT_FALSE(grid->isVisible());
  EXPECT_THAT(takeLog(), Not(Contains(HasSubstr("GRID shown"))));
  grid->toggleGridView();
  grid->closeAnimated();
}

TEST_F(Coordinator, ClosesAndForgetsWhenDisplaysChange) {
  startGrid(two);
  open();
  sim->screens().changed.emit();
  EXPECT_TRUE(grid->isVisible()) << "the same displays: a change of colours, say";
  EXPECT_THAT(takeLog(), IsEmpty());

  world().removeDisplay("right");
  advance(10ms);
  EXPECT_FALSE(grid->isVisible());
  EXPECT_THAT(views, SizeIs(1)) << "its panel is gone";
  EXPECT_FALSE(views[0]->isUp);
  EXPECT_THAT(takeLog(), Contains("[INFO] GRID: displays changed (1 connected) — open grids closed"));

  DisplaySetup again;
  again.name = "right";
  world().addDisplay(again);
  advance(10ms);
  EXPECT_THAT(takeLog(), Contains("[INFO] GRID: displays changed (2 connected)"));

  // Also one that is on its way out, which must not stay over a screen that has changed.
  grid->show(nullptr);
  grid->closeAnimated();
  EXPECT_TRUE(view("left").isUp);
  world().resizeDisplay("left", {1280, 1024});
  advance(10ms);
  EXPECT_FALSE(view("left").isUp || view("right").isUp);
}

TEST_F(Coordinator, TabPassesTheKeyboardOn) {
  startGrid(two);
  open();
  for (const auto key : {GridKey::tab, GridKey::backTab}) {
    view("left").input.key(key);
    EXPECT_FALSE(view("left").keyboard);
    EXPECT_TRUE(view("right").keyboard && view("right").scene.keyboard);
    view("right").input.key(GridKey::tab);
    EXPECT_TRUE(view("left").keyboard);
    EXPECT_FALSE(view("right").keyboard || view("right").scene.keyboard);
  }
}

TEST_F(Coordinator, OneFilterForAllPanelsAndTheBestMatchOfAll) {
  startGrid("left 960x1080 | A* [MyChat] B ; right 960x1080 | X* Y [Chat]");
  open();
  view("left").input.typed("chat");
  EXPECT_EQ(view("right").scene.filter, "chat");
  EXPECT_EQ(view("right").scene.matches, 1);

  view("left").input.key(GridKey::enter);
  advance(3s);
  EXPECT_EQ(world().currentSpace("right"), world().spaceNamed("Y")) << "a title that is the word is the better match";
  EXPECT_EQ(world().state()->focused, id("Chat"));
  EXPECT_FALSE(grid->isVisible());

  open("right");
  EXPECT_EQ(view("right").scene.filter, "") << "a new opening starts afresh";
}

TEST_F(Coordinator, CoveredOrEscapedClosesAllPanels) {
  startGrid(two);
  put("tessaspaces.transition.gridZoom", 0);
  Settings::setShowGridZoomAnimation(false);
  open();
  view("right").input.covered();
  EXPECT_FALSE(view("left").isUp || view("right").isUp);
  open();
  view("left").input.key(GridKey::escape);
  EXPECT_FALSE(view("left").isUp || view("right").isUp);
  EXPECT_FALSE(grid->isVisible());
}

TEST_F(Coordinator, TogglesTheViewOfVisiblePanelsOnly) {
  startGrid("left 960x1080 | A* [Mail Editor] ; right 960x1080 | X*");
  grid->toggleGridView();
  open();
  EXPECT_FALSE(view("left").scene.exploded);
  grid->toggleGridView();
  EXPECT_TRUE(view("left").scene.exploded && view("right").scene.exploded);
  EXPECT_FALSE(view("left").window("A", id("Mail")).rect.intersects(view("left").window("A", id("Editor")).rect));
  grid->close();
  open();
  EXPECT_FALSE(view("left").scene.exploded) << "until it is closed";
  grid->close();
  Settings::setGridOpensExploded(true);
  open();
  EXPECT_TRUE(view("left").scene.exploded);
}

TEST_F(Coordinator, ReloadTakesSettingsIn) {
  startGrid(two);
  grid->reload();
  open();
  const auto before = view("left").scene.tiles.size();
  const auto width = view("left").window("A", id("Mail")).picture->width;
  Settings::setGridRows(1);
  Settings::setGridColumns(2);
  Settings::setQuality(ImageQuality::low);
  grid->reload();
  advance(200ms);
  EXPECT_EQ(before, 3U);
  EXPECT_THAT(view("left").scene.tiles, SizeIs(2));
  EXPECT_LT(view("left").window("A", id("Mail")).picture->width, width * 2) << "tiles are larger, pictures coarser";
  backgrounds.color = 0xFF112200;
  backgrounds.changed.emit();
  EXPECT_EQ(view("left").tile("A").background.color, 0xFF112201U);
}

TEST_F(Coordinator, HotKeysGoToTheProgram) {
  startGrid(two);
  std::vector<std::uint32_t> pressed;
  grid->hotKeyPressed = [&](KeyCombo combo) {
    pressed.push_back(combo.keyCode);
    return combo.keyCode != 7;
  };
  open();
  const KeyCombo arrow{KeyCombo::arrowKeyCodes[1], KeyCombo::control | KeyCombo::option};
  const KeyCombo digit{KeyCombo::digitKeyCodes[0], KeyCombo::control | KeyCombo::option};
  const KeyCombo overview = Settings::overviewGridCombo();
  auto& input = view("left").input;
  EXPECT_TRUE(input.hotKey(overview, false));
  EXPECT_FALSE(input.hotKey(overview, true)) << "held, it would open and close for ever";
  EXPECT_TRUE(input.hotKey(arrow, false));
  EXPECT_TRUE(input.hotKey(arrow, true));
  EXPECT_TRUE(input.hotKey(digit, true));
  EXPECT_FALSE(input.hotKey({7, KeyCombo::command}, false));
  Settings::setOverviewGridCombo(arrow);
  EXPECT_FALSE(input.hotKey(arrow, true));
  EXPECT_THAT(pressed, ElementsAre(overview.keyCode, arrow.keyCode, arrow.keyCode, digit.keyCode, 7U));
}

TEST_F(Coordinator, SelfTestFindsWhatIsWrong) {
  startGrid(two);
  EXPECT_GT(runGridSelfTest(*grid).failures, 0) << "it is not open";

  open();
  const auto fine = runGridSelfTest(*grid);
  EXPECT_EQ(fine.failures, 0) << fine.text;
  EXPECT_GT(fine.checks, 30);
  EXPECT_THAT(fine.text, HasSubstr("left: 3 desktops, 3 windows, 2 with a preview, 1 with an icon only"));
  EXPECT_THAT(takeLog(), Contains(HasSubstr("[INFO] SELF-TEST GRID: ")));

  // A desktop more than the panel shows, and tiles by a setting that was not taken in.
  world().addSpace("left");
  EXPECT_THAT(runGridSelfTest(*grid).text, HasSubstr("left: the panel shows 3 desktops"));
  advance(2s);
  EXPECT_EQ(runGridSelfTest(*grid).failures, 0);
  Settings::setGridRows(1);
  Settings::setGridColumns(1);
  EXPECT_THAT(runGridSelfTest(*grid).text, HasSubstr("left: 4 tiles"));
  EXPECT_THAT(takeLog(), Contains(HasSubstr("[ERROR] SELF-TEST GRID: FAILED")));

  // Windows on screen without a picture.
  Spaces::forgetEverything();
  fault([](SimulatedFaults& faults) { faults.unavailable.insert(Operation::beginCapture); });
  startGrid(two);
  fault([](SimulatedFaults& faults) { faults.unavailable.insert(Operation::beginCapture); });
  open();
  const auto blind = runGridSelfTest(*grid);
  EXPECT_GE(blind.failures, 2);
  EXPECT_THAT(blind.text, HasSubstr("a window on screen has no preview"));
}

}  // namespace
}  // namespace tessaspaces
