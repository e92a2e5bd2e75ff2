#include <gmock/gmock.h>

#include "grid/GridLayout.h"
#include "grid/Overlap.h"
#include "grid/ScreenGeometry.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class GridLayoutTest : public CoreTest {
 protected:
  /// A world with one full-HD display, and a panel over it with so many desktops.
  void show(int rows, int columns, int desktops) {
    start("one 1920x1080 | A*");
    panel.setGrid(rows, columns);
    panel.setBounds({1920, 1080});
    for (int i = 0; i < desktops; ++i) {
      auto desktop = std::make_shared<DesktopInfo>(static_cast<SpaceID>(100 + i), "one");
      desktop->screen = sim->screens().mainScreen();
      all.desktops.push_back(std::move(desktop));
    }
    layOut();
  }
  void addWindow(std::size_t desktop, Rect bounds) { all.desktops[desktop]->windows.push_back({1, "", 1, bounds}); }
  void layOut() {
    panel.setSnapshot(all);
    panel.layoutGrid();
  }

  SpacesSnapshot all;
  GridLayout panel;
};

void expectNear(const Rect& actual, const Rect& expected) {
  EXPECT_NEAR(actual.x, expected.x, 1e-9);
  EXPECT_NEAR(actual.y, expected.y, 1e-9);
  EXPECT_NEAR(actual.width, expected.width, 1e-9);
  EXPECT_NEAR(actual.height, expected.height, 1e-9);
}

TEST_F(GridLayoutTest, AGridThatIsNotFullIsCentred) {
  show(3, 3, 5);
  ASSERT_THAT(panel.tileRects(), SizeIs(5));
  // Two rows are used. The height of 1000 left by header and margins gives tiles of 493 x 16/9: width decides.
  const double width = (1920 - 36 - 2 * 14) / 3.0;
  const double height = width * 9 / 16;
  const double top = 44 + 18 + (1000 - (2 * height + 14)) / 2;
  expectNear(panel.tileRects()[0], {18, top, width, height});
  expectNear(panel.tileRects()[4], {18 + width + 14, top + height + 14, width, height});
  EXPECT_EQ(panel.contentRects()[4], panel.tileRects()[4].inset(2, 2));
  EXPECT_EQ(panel.zoomRectBySpaceID().at(104), panel.contentRects()[4]);

  // With the menu bar's height above, everything is lower, and tiles as high as there is room for.
  panel.setMenuBarInset(30);
  panel.setGrid(3, 2);
  panel.layoutGrid();
  const double low = (1080 - 74 - 36 - 2 * 14) / 3.0;
  const double wide = low * 16 / 9;
  expectNear(panel.tileRects()[3], {18 + (1884 - (2 * wide + 14)) / 2 + wide + 14, 74 + 18 + low + 14, wide, low});
}

TEST_F(GridLayoutTest, OnlySoManyTilesAsTheGridHas) {
  show(2, 2, 6);
  EXPECT_THAT(panel.tileRects(), SizeIs(4));
  EXPECT_EQ(panel.zoomRectBySpaceID().count(104), 0U);
  EXPECT_TRUE(panel.tileGeometry(3, 6));
  const struct {
    int rows, columns, index, count;
  } none[] = {{2, 2, 4, 6}, {2, 2, -1, 6}, {2, 2, 0, 0}, {2, 2, 0, -3}, {0, 2, 0, 6}, {2, 0, 0, 6}, {-1, -1, 0, 6}};
  for (const auto& c : none) {
    panel.setGrid(c.rows, c.columns);
    EXPECT_FALSE(panel.tileGeometry(c.index, c.count)) << c.rows << "x" << c.columns << " " << c.index;
  }
  panel.layoutGrid();
  EXPECT_THAT(panel.tileRects(), IsEmpty());
  EXPECT_THAT(panel.zoomRectBySpaceID(), IsEmpty());
  panel.setGrid(2147483647, 2147483647);
  EXPECT_TRUE(panel.tileGeometry(5, 6));
}

TEST_F(GridLayoutTest, ThePanelMayBeTooSmallForAnything) {
  show(3, 3, 9);
  addWindow(0, {0, 0, 500, 500});
  panel.setBounds({30, 30});
  layOut();
  EXPECT_EQ(panel.tileRects()[8].width, 0);
  EXPECT_THAT(panel.thumbRects()[0], ElementsAre(Rect{}));
  EXPECT_FALSE(panel.hitTestTile({15, 15}));
}

TEST_F(GridLayoutTest, TileSizes) {
  start("wide 2000x1000 | A*");
  const struct {
    double width, height;
    int columns, rows;
    std::optional<double> aspect;
    Size expected;
  } cases[] = {
      {430, 1000, 4, 2, 2, {97, 48.5}},             // the width decides
      {1000, 110, 4, 2, 2, {100, 50}},              // the height decides
      {430, 1000, 4, 2, std::nullopt, {97, 48.5}},  // as the main screen
      {100, 100, 0, -2, 1, {100, 100}},             // at least one
      {20, 100, 4, 1, 2, {0, 0}},                   // less than the gaps
  };
  for (const auto& c : cases) {
    const auto size = ScreenGeometry::tileSize(c.width, c.height, c.columns, c.rows,
                                               c.columns == 4 && c.width > 900 ? 10 : 14, c.aspect);
    EXPECT_NEAR(size.width, c.expected.width, 1e-9) << c.width << "x" << c.height;
    EXPECT_NEAR(size.height, c.expected.height, 1e-9) << c.width << "x" << c.height;
  }
}

TEST_F(GridLayoutTest, ScreensAreMeasuredFromTheFirst) {
  start("first 1600x1000 | A* ; second 800x600+1600+300 | B*");
  const auto screens = sim->screens().screens();
  EXPECT_EQ(ScreenGeometry::flipped(screens[1]->frame), (Rect{1600, 300, 800, 600}));
  EXPECT_EQ(ScreenGeometry::flipped(ScreenGeometry::flipped(screens[1]->frame)), screens[1]->frame);
  EXPECT_EQ(ScreenGeometry::screenAspect(), 1.6);
  Screen barred = *screens[1];
  barred.visibleFrame.height -= 24;
  EXPECT_EQ(ScreenGeometry::menuBarInset(std::make_shared<Screen>(barred)), 24);
  EXPECT_EQ(ScreenGeometry::menuBarInset(nullptr), 0);

  sim = std::make_unique<SimulatedPlatform>();
  setPlatform(sim.get());
  EXPECT_EQ(ScreenGeometry::flipped({1, 2, 3, 4}), (Rect{1, -6, 3, 4}));
  EXPECT_EQ(ScreenGeometry::screenAspect(), 16.0 / 9);
  EXPECT_EQ(ScreenGeometry::menuBarInset(nullptr), 0);
}

TEST_F(GridLayoutTest, WindowsStandInTheTileAsOnTheirScreen) {
  start("first 1000x500 | A* ; second 1000x500+1000+200 | B*");
  const Rect content{10, 20, 100, 50};
  DesktopInfo desktop(2, "second");
  desktop.screen = sim->screens().screens()[1];
  for (const auto& bounds : {Rect{1500, 450, 250, 125}, Rect{900, 100, 2000, 2000}, Rect{1990, 690, 1, 1},
                             Rect{1100, 300, 1, 1}, Rect{0, 0, 900, 400}, Rect{1200, 300, 0, 50}}) {
    desktop.windows.push_back({1, "", 1, bounds});
  }
  const auto rects = GridLayout::windowRects(content, desktop);
  ASSERT_THAT(rects, SizeIs(6));
  expectNear(rects[0], {60, 45, 25, 12.5});
  expectNear(rects[1], content);
  expectNear(rects[2], {109, 69, 1, 1});  // a speck in the corner has no room to grow
  expectNear(rects[3], {20, 30, 6, 6});
  EXPECT_EQ(rects[4], Rect{}) << "on the other screen";
  EXPECT_EQ(rects[5], Rect{}) << "no extent";

  desktop.screen = nullptr;
  expectNear(GridLayout::windowRects(content, desktop)[4], {10, 20, 90, 40});
  Screen speck;
  speck.frame = {0, 0, 1, 1};
  desktop.screen = std::make_shared<Screen>(speck);
  EXPECT_THAT(GridLayout::windowRects(content, desktop), IsEmpty());
  sim = std::make_unique<SimulatedPlatform>();
  setPlatform(sim.get());
  desktop.screen = nullptr;
  EXPECT_THAT(GridLayout::windowRects(content, desktop), IsEmpty());
  EXPECT_THAT(GridLayout::explodedWindowRects(content, desktop), IsEmpty());
}

TEST_F(GridLayoutTest, DrawsApartOnlyWhatOverlaps) {
  show(2, 2, 4);
  addWindow(0, {100, 100, 800, 600});
  addWindow(1, {100, 100, 800, 600});
  addWindow(1, {900, 100, 800, 600});
  addWindow(2, {100, 100, 800, 600});
  addWindow(2, {5000, 0, 800, 600});  // elsewhere
  addWindow(2, {300, 200, 800, 600});
  layOut();
  const auto standard = panel.thumbRects();
  EXPECT_THAT(panel.explodedTiles(), IsEmpty());
  EXPECT_TRUE(hasOverlap(standard[2]));

  panel.setExplodedAll(true);
  panel.layoutGrid();
  EXPECT_THAT(panel.explodedTiles(), ElementsAre(2));
  for (const int same : {0, 1, 3})
    EXPECT_EQ(panel.thumbRects()[static_cast<std::size_t>(same)], standard[static_cast<std::size_t>(same)]);
  const auto apart = panel.thumbRects()[2];
  EXPECT_FALSE(hasOverlap(apart));
  EXPECT_EQ(apart[1], Rect{});
  EXPECT_EQ(apart, GridLayout::explodedWindowRects(panel.contentRects()[2], *all.desktops[2]));

  // What is kept from one pass for the next must not outlive a change.
  all.desktops[2]->windows[2].bounds.width += 200;
  layOut();
  EXPECT_EQ(panel.thumbRects()[2], GridLayout::explodedWindowRects(panel.contentRects()[2], *all.desktops[2]));
  EXPECT_NE(panel.thumbRects()[2], apart);
  panel.setExplodedAll(false);
  panel.layoutGrid();
  EXPECT_EQ(panel.thumbRects()[1], standard[1]);
  EXPECT_THAT(panel.explodedTiles(), IsEmpty());
}

TEST_F(GridLayoutTest, HitsTheFrontmost) {
  show(2, 2, 4);
  addWindow(3, {0, 0, 960, 1080});
  addWindow(3, {0, 0, 1920, 1080});
  addWindow(3, {4000, 0, 100, 100});
  layOut();
  const auto tile = panel.tileRects()[3];
  const auto content = panel.contentRects()[3];
  EXPECT_EQ(panel.hitTestTile(tile.center()), 3);
  EXPECT_EQ(panel.hitTestTile({tile.minX(), tile.minY()}), 3);
  EXPECT_FALSE(panel.hitTestTile({tile.maxX(), tile.minY()}));
  EXPECT_FALSE(panel.hitTestTile({tile.minX() - 7, tile.center().y})) << "between two tiles";

  const auto left = panel.hitTestWindow({content.minX() + 10, content.center().y});
  ASSERT_TRUE(left);
  EXPECT_EQ(left->tile, 3);
  EXPECT_EQ(left->window, 0);
  const auto right = panel.hitTestWindow({content.maxX() - 10, content.center().y});
  ASSERT_TRUE(right);
  EXPECT_EQ(right->window, 1);
  EXPECT_FALSE(panel.hitTestWindow({tile.minX() + 1, tile.center().y})) << "on the border";
  EXPECT_FALSE(panel.hitTestWindow(panel.tileRects()[0].center()));
  EXPECT_FALSE(panel.hitTestWindow({0, 0})) << "where a window that is not shown has its all-zero rectangle";
}

TEST_F(GridLayoutTest, DropsLandOnTheTileUnderTheCursor) {
  show(2, 2, 3);
  const auto target = panel.externalDropTarget(panel.tileRects()[1].center(), {-5, 7});
  ASSERT_TRUE(target);
  EXPECT_EQ(target->desktop, all.desktops[1]);
  EXPECT_EQ(target->topLeft, (Point{-5, 7}));
  EXPECT_EQ(target->rect, panel.contentRects()[1]);
  EXPECT_FALSE(panel.externalDropTarget({1, 1}, {0, 0}));
  // Desktops went while the panel still shows the old ones.
  all.desktops.resize(1);
  panel.setSnapshot(all);
  EXPECT_FALSE(panel.externalDropTarget(panel.tileRects()[1].center(), {0, 0}));
}

TEST_F(GridLayoutTest, IconsAndHeader) {
  expectNear(GridLayout::iconRect({10, 20, 100, 50}), {45, 30, 30, 30});
  panel.setBounds({800, 600});
  panel.setMenuBarInset(24);
  EXPECT_EQ(panel.headerRect(), (Rect{0, 0, 800, 600}));
  panel.setBounds({800, 30});
  EXPECT_EQ(panel.headerRect(), (Rect{0, -10, 800, 94}));
}

}  // namespace
}  // namespace tessaspaces
