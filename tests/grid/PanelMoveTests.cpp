#include "grid/GridPlacement.h"
#include "grid/PanelTest.h"
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

using PanelMoves = PanelTest;

/// Where a window's preview is taken hold of to drop its top left at a part of the tile's content.
struct Grip {
  Point from;
  Point to;
};
Grip grip(const FakePanelView& source, const Rect& preview, const FakePanelView& target, const std::string& label,
          double x, double y) {
  const auto& content = target.tile(label).content;
  const Point from{preview.x + 1, preview.y + 1};
  const Point corner{content.x + x * content.width, content.y + y * content.height};
  // From the target's coordinates over the screen's to the source's.
  return {from,
          {corner.x + 1 + target.on->frame.x - source.on->frame.x,
           corner.y + 1 + source.on->frame.maxY() - target.on->frame.maxY()}};
}

TEST(GridPlacementTest, KeepsWindowsOnTheScreen) {
  const Rect image{100, 50, 192, 108};
  const Rect screen{0, 0, 1920, 1080};
  const Rect visible{0, 30, 1920, 1050};
  using Frame = std::optional<Rect>;
  const struct {
    const char* what;
    Rect window;
    Point drop;
    bool otherScreen;
    Frame expected;
  } cases[] = {
      {"where it was dropped", {0, 30, 400, 300}, {110, 70}, false, Frame({100, 200, 400, 300})},
      {"beyond the right and the bottom", {0, 30, 400, 300}, {290, 155}, false, Frame({1520, 780, 400, 300})},
      {"beyond the left and under the panel", {50, 80, 400, 300}, {90, 50}, false, Frame({0, 30, 400, 300})},
      {"too wide: by its left", {-50, 30, 2000, 300}, {120, 70}, false, Frame({0, 200, 2000, 300})},
      {"there already", {100, 200, 400, 300}, {110, 70}, false, std::nullopt},
      {"fills the screen", {0, 0, 1920, 1080}, {120, 90}, false, std::nullopt},
      {"fills another screen", {1920, 0, 2560, 1440}, {120, 90}, true, Frame({0, 30, 1920, 1050})},
      {"fits from another screen", {2000, 0, 400, 300}, {110, 70}, true, Frame({100, 200, 400, 300})},
  };
  for (const auto& c : cases) {
    EXPECT_EQ((GridPlacement{c.window, c.drop, image, screen, visible, c.otherScreen}.frame()), c.expected) << c.what;
  }
  EXPECT_FALSE((GridPlacement{{0, 0, 9, 9}, {1, 1}, {}, screen, visible, false}.frame()));
}

TEST_F(PanelMoves, ADropMovesTheWindowAndPlacesItThere) {
  startGrid("left 1920x1080 | A* [Mail] B C");
  open();
  auto& panel = view("left");
  const auto mail = id("Mail");
  const auto size = frameOf(mail);
  const auto [from, to] = grip(panel, panel.window("A", mail).rect, panel, "B", 0.25, 0.5);
  panel.drag(from, to);
  EXPECT_THAT(takeLog(),
              Contains("[DEBUG] ACTION DIAG: moveWindow(window=" + std::to_string(mail) + ", fromSpace=1, toSpace=2)"));
  EXPECT_THAT(panel.windows("A"), IsEmpty());
  EXPECT_THAT(panel.windows("B"), ElementsAre(mail)) << "shown there at once";
  EXPECT_EQ(world().spacesOf(mail), std::vector<SpaceID>{1}) << "while the system has to follow";
  EXPECT_TRUE(panel.window("B", mail).picture);

  // News of something else do not bring it back meanwhile.
  world().showSpace(3);
  advance(120ms);
  EXPECT_THAT(panel.windows("B"), ElementsAre(mail));
  advance(2s);
  EXPECT_EQ(world().spacesOf(mail), std::vector<SpaceID>{2});
  EXPECT_EQ(frameOf(mail), (Rect{480, 540, size.width, size.height}));
  EXPECT_THAT(panel.windows("B"), ElementsAre(mail));
  EXPECT_THAT(panel.alerts, IsEmpty());

  // In its own tile: placed, not moved.
  world().clearCalls();
  const auto again = grip(panel, panel.window("B", mail).rect, panel, "B", 0, 0);
  panel.drag(again.from, again.to);
  advance(2s);
  EXPECT_EQ(frameOf(mail), (Rect{0, 0, size.width, size.height}));
  EXPECT_FALSE(world().asked(Operation::bridgedMoveWindows));
}

TEST_F(PanelMoves, AFailureBringsThePreviewBackAndSaysSo) {
  startGrid("left 1920x1080 | A* [Mail] B");
  fault([](SimulatedFaults& faults) { faults.ignoreMoveMethods(4); });
  open();
  auto& panel = view("left");
  const auto mail = id("Mail");
  const auto home = panel.window("A", mail).rect;
  const auto [from, to] = grip(panel, home, panel, "B", 0.25, 0.25);
  panel.drag(from, to);
  EXPECT_THAT(panel.windows("B"), ElementsAre(mail));
  advance(3s);
  EXPECT_THAT(panel.windows("A"), ElementsAre(mail));
  EXPECT_THAT(panel.alerts, ElementsAre("The window could not be moved | “Mail” stays where it was."));
  EXPECT_THAT(takeLog(), Contains(HasSubstr("[WARNING] MOVE: window " + std::to_string(mail))));
  ASSERT_THAT(panel.flights, SizeIs(1));
  EXPECT_EQ(panel.flights[0].to, home);
  EXPECT_NEAR(panel.flights[0].from.x, panel.tile("B").content.x + panel.tile("B").content.width / 4, 1e-6);

  // Gone before it could be moved: nobody's fault.
  panel.drag(from, to);
  world().removeWindow(mail);
  advance(3s);
  EXPECT_THAT(panel.alerts, SizeIs(1));
  EXPECT_THAT(panel.windows("A"), IsEmpty());

  // A window on every desktop stays.
  WindowSetup setup;
  setup.title = "Note";
  setup.pid = 7;
  setup.sticky = true;
  const auto note = world().addWindow(setup);
  advance(500ms);
  const auto sticky = grip(panel, panel.window("A", note).rect, panel, "B", 0.1, 0.1);
  panel.drag(sticky.from, sticky.to);
  advance(3s);
  EXPECT_THAT(panel.alerts, SizeIs(1));
  EXPECT_THAT(panel.flights, SizeIs(2));
}

TEST_F(PanelMoves, ADropOnTheWayElsewhereComesBackToWhereTheWindowIs) {
  startGrid("left 1920x1080 | A* [Mail] B C");
  fault([](SimulatedFaults& faults) { faults.ignoreMoveMethods(4); });
  open();
  auto& panel = view("left");
  const auto mail = id("Mail");
  const auto home = panel.window("A", mail).rect;
  const auto first = grip(panel, home, panel, "B", 0.1, 0.1);
  panel.drag(first.from, first.to);
  const auto second = grip(panel, panel.window("B", mail).rect, panel, "C", 0.1, 0.1);
  panel.drag(second.from, second.to);
  world().showSpace(2);
  advance(150ms);
  EXPECT_THAT(panel.windows("C"), ElementsAre(mail)) << "news do not take it back to where it really is yet";
  EXPECT_THAT(panel.windows("A"), IsEmpty());
  advance(5s);
  EXPECT_THAT(panel.windows("A"), ElementsAre(mail));
  EXPECT_THAT(panel.alerts, SizeIs(1));
  ASSERT_THAT(panel.flights, SizeIs(1));
  EXPECT_EQ(panel.flights[0].to, home);
}

TEST_F(PanelMoves, TheLastDropOfAWindowCounts) {
  startGrid("left 1920x1080 | A* [Mail] B C");
  open();
  auto& panel = view("left");
  const auto mail = id("Mail");
  const auto first = grip(panel, panel.window("A", mail).rect, panel, "B", 0.1, 0.1);
  panel.drag(first.from, first.to);
  advance(50ms);
  const auto second = grip(panel, panel.window("B", mail).rect, panel, "C", 0.5, 0.5);
  panel.drag(second.from, second.to);
  EXPECT_THAT(panel.windows("C"), ElementsAre(mail));
  advance(3s);
  EXPECT_EQ(world().spacesOf(mail), std::vector<SpaceID>{3});
  EXPECT_EQ(frameOf(mail).x, 960);
  EXPECT_THAT(panel.windows("C"), ElementsAre(mail));
  EXPECT_THAT(panel.alerts, IsEmpty());

  // The window is on its way back when the coordinator goes.
  const auto third = grip(panel, panel.window("C", mail).rect, panel, "A", 0.1, 0.1);
  panel.drag(third.from, third.to);
  grid.reset();
  advance(3s);
  EXPECT_EQ(world().spacesOf(mail), std::vector<SpaceID>{1});
}

TEST_F(PanelMoves, AcrossDisplays) {
  startGrid("left 1920x1080 | A* [Mail] B ; right 800x600 | X* Y");
  open();
  auto& left = view("left");
  auto& right = view("right");
  const auto mail = id("Mail");
  world().edit([&](WorldState& state) { state.window(mail)->reported.bounds = WindowBounds{10, 20, 1600, 500}; });
  advance(2s);

  // Held over the other panel its tile lights up, and no more beside it.
  const auto preview = left.window("A", mail).rect;
  const auto [from, to] = grip(left, preview, right, "Y", 0.25, 0.25);
  left.input.pointerMoved(from);
  left.input.pressed(GridButton::left, from);
  left.input.pointerMoved({from.x + 20, from.y});
  left.input.pointerMoved(to);
  EXPECT_TRUE(right.tile("Y").dropTarget);
  left.input.pointerMoved({from.x + 20, from.y});
  EXPECT_FALSE(right.tile("Y").dropTarget);
  left.input.pointerMoved(to);
  left.input.released(GridButton::left, to);
  EXPECT_FALSE(right.tile("Y").dropTarget);
  EXPECT_THAT(right.windows("Y"), ElementsAre(mail));
  advance(2s);
  EXPECT_EQ(world().spacesOf(mail), std::vector<SpaceID>{world().spaceNamed("Y")});
  EXPECT_EQ(frameOf(mail), (Rect{1920, 100, 800, 500})) << "as wide as there is room, and on the screen";

  // Between the tiles of the other panel.
  (void)takeLog();
  const auto back = grip(right, right.window("Y", mail).rect, right, "Y", 0.1, 0.1);
  right.drag(back.from, {-5, 5});
  advance(2s);
  EXPECT_THAT(takeLog(), Contains("[DEBUG] DROP: window " + std::to_string(mail) +
                                  " released outside any desktop tile — not moved"));
  EXPECT_THAT(right.flights, SizeIs(1)) << "it flies home";
  EXPECT_EQ(world().spacesOf(mail), std::vector<SpaceID>{world().spaceNamed("Y")});
}

TEST_F(PanelMoves, DisplaysThatShareDesktopsOnlyPlace) {
  startGrid("left 1000x1000 | A* [Mail] ; right 1000x1000 | X*");
  // As where the window manager has one desktop over both.
  world().edit([](WorldState& state) { state.displays[1].spaces[0].reported = state.displays[0].spaces[0].reported; });
  advance(50ms);
  open();
  auto& left = view("left");
  auto& right = view("right");
  world().clearCalls();
  const auto mail = id("Mail");
  const auto [from, to] = grip(left, left.window("A", mail).rect, right, "A", 0.1, 0.2);
  left.drag(from, to);
  EXPECT_FALSE(right.window("A", mail).rect.isEmpty());
  advance(2s);
  EXPECT_FALSE(world().asked(Operation::bridgedMoveWindows));
  EXPECT_EQ(frameOf(mail).x, 1100);
  EXPECT_EQ(frameOf(mail).y, 200);
}

TEST_F(PanelMoves, RenamesAndClosesAndMakesDesktops) {
  startGrid("left 960x1080 | A* [Mail] B");
  open();
  auto& panel = view("left");
  const auto rename = [&](std::optional<std::string> name) {
    panel.input.key(GridKey::rename);
    ASSERT_TRUE(panel.nameDone);
    std::exchange(panel.nameDone, {})(std::move(name));
    advance(200ms);
  };
  rename("Letters");
  EXPECT_EQ(panel.scene.tiles[0].label, "Letters");
  EXPECT_EQ(Settings::desktopNickname("UUID-1"), "Letters");
  rename(std::nullopt);
  EXPECT_EQ(panel.scene.tiles[0].label, "Letters");
  EXPECT_EQ(panel.editedName, "Letters");
  rename("");
  EXPECT_EQ(panel.scene.tiles[0].label, "A");
  rename("A");
  EXPECT_FALSE(Settings::desktopNickname("UUID-1")) << "the window manager's own name is no nickname";

  panel.click(panel.window("A", id("Mail")).rect.center(), GridButton::middle);
  advance(1s);
  EXPECT_THAT(panel.windows("A"), IsEmpty());

  panel.input.key(GridKey::insert);
  ASSERT_TRUE(panel.scene.plus);
  EXPECT_TRUE(panel.scene.plus->busy);
  advance(2s);
  EXPECT_THAT(panel.scene.tiles, SizeIs(3));
  EXPECT_FALSE(panel.scene.plus->busy);

  panel.input.key(GridKey::right);
  panel.input.key(GridKey::remove);
  advance(2s);
  EXPECT_THAT(panel.scene.tiles, SizeIs(2));
  EXPECT_THAT(panel.alerts, IsEmpty());

  fault([](SimulatedFaults& faults) {
    faults.unavailable = {Operation::addSpace, Operation::removeSpace};
    faults.ignored = {Operation::addSpace, Operation::removeSpace};
  });
  panel.input.key(GridKey::insert);
  advance(3s);
  panel.input.key(GridKey::remove);
  advance(3s);
  EXPECT_THAT(panel.alerts, ElementsAre(HasSubstr("No desktop was added"), HasSubstr("was not removed | ")));
  EXPECT_FALSE(panel.scene.plus->busy);

  Settings::setGridRows(1);
  Settings::setGridColumns(2);
  grid->reload();
  EXPECT_FALSE(panel.scene.plus) << "a desktop without a tile would be added out of sight";
}

}  // namespace
}  // namespace tessaspaces
