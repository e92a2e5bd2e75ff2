#include <map>
#include <random>

#include "grid/RootViewTest.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Look = GridScene::Window::Look;

TEST_F(RootViewTest, ClicksMeanWhatTheyPointAt) {
  show(3);
  addWindow(1, 7, small);
  view->setCanAdd(true);
  const auto plus = view->scene().plus->rect.center();
  const struct {
    GridButton button;
    Point where;
    std::vector<std::string> asked;
  } cases[] = {
      {GridButton::left, at(1, 7), {"go 1 to window 7"}},
      {GridButton::left, corner(1), {"go 1"}},
      {GridButton::left, corner(2), {"go 2"}},
      {GridButton::left, plus, {"add"}},
      {GridButton::left, gap, {"close"}},
      {GridButton::left, {-5, 300}, {}},
      {GridButton::middle, at(1, 7), {"close window 7"}},
      {GridButton::middle, corner(1), {}},
      {GridButton::middle, gap, {}},
      {GridButton::right, at(1, 7), {"menu"}},
      {GridButton::right, gap, {"menu"}},
  };
  for (const auto& c : cases) {
    click(c.button, c.where);
    EXPECT_EQ(owner.take(), c.asked) << static_cast<int>(c.button) << " at " << c.where.x << "," << c.where.y;
  }
  view->setBusyAdding(true);
  click(GridButton::left, plus);
  EXPECT_TRUE(view->scene().plus->busy);
  // Neither what begins here and ends there is a click, nor what two buttons do, nor a press before all went away.
  view->pressed(GridButton::left, corner(1));
  view->released(GridButton::left, corner(2));
  view->pressed(GridButton::left, corner(1));
  view->pressed(GridButton::right, corner(1));
  view->released(GridButton::right, corner(1));
  view->released(GridButton::left, corner(1));
  view->pressed(GridButton::left, at(1, 7));
  const auto where = at(1, 7);
  removeWindow(1, 7);
  view->released(GridButton::left, where);
  view->pressed(GridButton::left, corner(2));
  view->reset();
  view->released(GridButton::left, corner(2));
  EXPECT_THAT(owner.take(), IsEmpty());
}

TEST_F(RootViewTest, WhatIsUnderThePointerIsMarked) {
  show(4);
  addWindow(1, 7, small, "Notes", 31);
  view->setApplicationNames({{31, "Editor"}});
  view->pointerMoved(at(1, 7));
  EXPECT_EQ(window(1, 7).look, Look::hovered);
  EXPECT_EQ(window(1, 7).application, "Editor");
  EXPECT_TRUE(tile(1).hovered);
  EXPECT_EQ(selection(), 2U) << "which is the keyboard's";

  const int before = owner.redraws;
  view->pointerMoved({at(1, 7).x + 1, at(1, 7).y});
  EXPECT_EQ(owner.redraws, before) << "nothing looks different";
  removeWindow(1, 7);
  EXPECT_TRUE(tile(1).hovered);
  view->pointerMoved(gap);
  EXPECT_FALSE(tile(1).hovered);
  EXPECT_EQ(owner.redraws, before + 1);
  view->pointerMoved(corner(3));
  view->pointerLeft();
  EXPECT_FALSE(tile(3).hovered);
  EXPECT_EQ(owner.redraws, before + 3);
}

TEST_F(RootViewTest, APreviewFollowsThePointerAndIsDropped) {
  show(4);
  addWindow(1, 7, small);
  addWindow(2, 7, small);
  addWindow(1, 8, {2500, 600, 100, 100});
  const auto home = window(1, 7).rect;
  const Point grip{home.x + 3, home.y + 20};
  view->pressed(GridButton::left, grip);
  view->pointerMoved({grip.x + 3, grip.y - 3});
  EXPECT_FALSE(view->isDragging()) << "a hand that trembles";

  const auto target = corner(4);
  view->pointerMoved(target);
  EXPECT_TRUE(view->isDragging());
  EXPECT_EQ(window(1, 7).look, Look::lifted);
  EXPECT_EQ(window(1, 7).rect, home);
  EXPECT_EQ(window(2, 7).look, Look::plain) << "a window on several desktops is taken from one";
  const auto carried = view->scene().carried->window;
  EXPECT_EQ(carried.rect, (Rect{target.x - 3, target.y - 20, home.width, home.height}));
  EXPECT_EQ(carried.look, Look::plain);
  EXPECT_TRUE(tile(4).dropTarget);
  EXPECT_FALSE(tile(4).hovered);
  view->pointerMoved(at(1, 8));
  EXPECT_EQ(window(1, 8).look, Look::plain);
  view->key(GridKey::enter);
  view->typed("3");
  EXPECT_THAT(owner.take(), IsEmpty()) << "keys have to wait";

  view->released(GridButton::left, target);
  EXPECT_THAT(owner.take(), ElementsAre("move 7 from 1 to 4"));
  EXPECT_EQ(owner.moved->dropInRoot, (Point{target.x - 3, target.y - 20}));
  EXPECT_EQ(owner.moved->imageRect, tile(4).content);
  EXPECT_FALSE(view->isDragging());
  EXPECT_FALSE(view->scene().carried);

  drag(1, 7, corner(1));
  view->released(GridButton::left, corner(1));
  EXPECT_THAT(owner.take(), ElementsAre("move 7 from 1 to 1"));
}

TEST_F(RootViewTest, ADragThatEndsNowhereGoesBack) {
  show(4);
  addWindow(1, 7, small);
  const auto home = window(1, 7).rect;
  takeLog();
  const struct {
    std::function<void()> end;
    std::vector<std::string> asked, logged;
  } cases[] = {
      {[&] { view->released(GridButton::left, gap); },
       {"fly back 7"},
       {"[DEBUG] DROP: window 7 released outside any desktop tile — not moved"}},
      {[&] { view->key(GridKey::escape); }, {"fly back 7"}, {}},
      {[&] { view->pressed(GridButton::right, gap); }, {"fly back 7"}, {}},
      {[&] { view->cancelDrag(); }, {}, {}},
      {[&] { view->covered(); }, {"covered"}, {}},
      {[&] { view->reset(); }, {}, {}},
  };
  for (const auto& c : cases) {
    drag(1, 7, gap);
    c.end();
    EXPECT_FALSE(view->isDragging());
    EXPECT_EQ(owner.take(), c.asked);
    EXPECT_EQ(takeLog(), c.logged);
    EXPECT_EQ(window(1, 7).look, Look::plain);
    // What is left of the buttons means nothing any more.
    view->released(GridButton::right, gap);
    view->released(GridButton::left, gap);
    EXPECT_THAT(owner.take(), IsEmpty());
  }
  EXPECT_EQ(owner.flown.second, home);
  EXPECT_EQ(owner.flown.first.center(), gap);
}

TEST_F(RootViewTest, ADragBeyondThePanelIsAnotherPanelsToTake) {
  show(4);
  addWindow(1, 7, small);
  drag(1, 7, {-10, 80});
  // The panel's top left is at 1920 across and, counted from the first screen's bottom, 1100 up.
  EXPECT_THAT(owner.take(), ElementsAre("outside 1910,1020"));
  EXPECT_FALSE(tile(1).dropTarget);
  view->pointerMoved(corner(1));
  view->pointerMoved(corner(2));
  EXPECT_THAT(owner.take(), ElementsAre("inside"));
  EXPECT_TRUE(tile(2).dropTarget);
  view->pointerMoved({-10, 80});
  view->pointerLeft();
  const auto home = window(1, 7).rect;
  owner.take();
  view->released(GridButton::left, {-20, 90});
  EXPECT_THAT(owner.take(), ElementsAre("inside", "drop 7 from 1 at 1900,1010"));
  EXPECT_NEAR(owner.grip.x, home.width / 2, 1e-9);
  EXPECT_NEAR(owner.grip.y, home.height / 2, 1e-9);
  EXPECT_FALSE(view->isDragging());
  view->returnPreview(7, 1, view->screenPoint({-50, 60}));
  view->returnPreview(8, 1, {});
  EXPECT_THAT(owner.take(), ElementsAre("fly back 7"));
  EXPECT_EQ(owner.flown.first, (Rect{-50, 60, home.width, home.height}));

  drag(1, 7, {-10, 80});
  view->key(GridKey::escape);
  EXPECT_THAT(owner.take(), ElementsAre("outside 1910,1020", "inside", "fly back 7"));
}

TEST_F(RootViewTest, ADragLivesAsLongAsItsWindow) {
  show(4);
  addWindow(1, 7, small);
  drag(1, 7, {-10, 80});
  addWindow(1, 8, small);
  view->setExplodedAll(true);
  desktops.pop_back();
  refresh();
  EXPECT_TRUE(view->isDragging());
  owner.take();
  removeWindow(1, 7);
  EXPECT_FALSE(view->isDragging());
  EXPECT_THAT(owner.take(), ElementsAre("inside"));
  view->released(GridButton::left, corner(2));
  EXPECT_THAT(owner.take(), IsEmpty());

  // Also when it goes between the press and the first movement.
  view->pressed(GridButton::left, at(1, 8));
  removeWindow(1, 8);
  view->pointerMoved(corner(2));
  EXPECT_FALSE(view->isDragging());
}

TEST_F(RootViewTest, PreviewsOfOtherPanelsAreTaken) {
  show(4);
  const auto cursor = view->screenPoint(corner(3));
  EXPECT_EQ(view->rootPoint(cursor), corner(3));
  view->setExternalHover(cursor);
  EXPECT_TRUE(tile(3).dropTarget);
  EXPECT_EQ(owner.redraws, 1);
  view->setExternalHover(Point{cursor.x - 1, cursor.y});
  EXPECT_EQ(owner.redraws, 1);
  const auto target = view->externalDropTarget(cursor, {cursor.x - 30, cursor.y + 40});
  ASSERT_TRUE(target);
  EXPECT_EQ(target->desktop->spaceID, 3U);
  EXPECT_EQ(target->topLeft, (Point{corner(3).x - 30, corner(3).y - 40}));
  EXPECT_EQ(target->rect, tile(3).content);
  EXPECT_FALSE(view->externalDropTarget(view->screenPoint(gap), {}));
  view->setExternalHover(std::nullopt);
  EXPECT_FALSE(tile(3).dropTarget);
  EXPECT_EQ(view->zoomRect(3), tile(3).content);
  EXPECT_FALSE(view->zoomRect(5));
}

TEST_F(RootViewTest, ThePlusIsWhereThereIsRoom) {
  show(3);
  EXPECT_FALSE(view->scene().plus);
  view->setCanAdd(true);
  const auto cell = view->scene().plus->rect;
  EXPECT_EQ(cell.x, tile(2).rect.x);
  EXPECT_EQ(cell.y, tile(3).rect.y);
  EXPECT_EQ(cell.width, tile(3).rect.width);

  show(4);
  const auto last = tile(4).rect;
  EXPECT_EQ(view->scene().plus->rect, (Rect{last.maxX() + 14, last.y, 44, last.height}));
  view->pointerMoved(view->scene().plus->rect.center());
  EXPECT_TRUE(view->scene().plus->hovered);

  // Two tiles side by side leave nothing but the margin, whether or not another row could follow.
  show(2);
  EXPECT_EQ(view->scene().plus->rect.width, 28);
  const auto screen = sim->screens().screens()[1];
  view->setScreen(screen, 1, 2);
  EXPECT_EQ(view->scene().plus->rect, (Rect{1920 - 18 - 28, 8, 28, 28}));
  view->setScreen(screen, 0, 0);
  EXPECT_EQ(view->scene().plus->rect.width, 28);
  show(0);
  EXPECT_GT(view->scene().plus->rect.width, 300) << "the first cell";
  click(GridButton::left, view->scene().plus->rect.center());
  EXPECT_THAT(owner.take(), ElementsAre("add"));
}

/// Everything that may happen in any order: what the scene and the owner were told has to agree at each step.
TEST_F(RootViewTest, NothingConfusesIt) {
  std::mt19937 random(20);
  const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  const auto anyOf = [&](const auto& all) {
    return all[static_cast<std::size_t>(below(static_cast<int>(all.size())))];
  };
  const auto point = [&] {
    const auto scene = view->scene();
    if (below(2) == 0 && !scene.tiles.empty()) {
      if (const auto tile = anyOf(scene.tiles); !tile.windows.empty()) return anyOf(tile.windows).rect.center();
    }
    return Point{below(2200) - 140.0, below(1300) - 110.0};
  };
  const std::vector<std::string> texts{"a", "a", " ", "\xFF\xC3", "9", "é", "ba c", "\xE2\x80\x8D"};
  const std::vector<GridButton> buttons{GridButton::left, GridButton::left, GridButton::middle, GridButton::right};
  const std::vector<std::function<void()>> steps{
      [&] {
        addWindow(static_cast<SpaceID>(below(static_cast<int>(desktops.size())) + 1), static_cast<WindowID>(below(5)),
                  {1700.0 + below(2400), below(1300) - 100.0, below(900) - 50.0, below(700) - 50.0}, anyOf(texts));
      },
      [&] { removeWindow(1, static_cast<WindowID>(below(5))); },
      [&] { view->setExplodedAll(below(2) == 0); },
      [&] { view->typed(anyOf(texts)); },
      [&] { view->key(static_cast<GridKey>(below(15))); },
      [&] { view->pressed(anyOf(buttons), point()); },
      [&] { view->released(anyOf(buttons), point()); },
      [&] { view->pointerMoved(point()); },
      [&] { view->pointerMoved(point()); },
      [&] {
        for (const auto& item : owner.menu) {
          if (item.action) item.action();
        }
      },
  };
  int drags = 0;
  view->setCanAdd(true);
  for (int step = 0; step < 30000; ++step) {
    if (step % 60 == 0) show(1 + below(6));
    // Not even the screen is sure to stay.
    if (step % 60 > 50) view->setScreen(below(3) ? sim->screens().screens()[1] : nullptr, below(4) - 1, below(4) - 1);
    anyOf(steps)();
    const auto scene = view->scene();
    std::map<Look, int> looks;
    int selected = scene.plus && scene.plus->selected ? 1 : 0;
    for (const auto& tile : scene.tiles) {
      selected += tile.selected ? 1 : 0;
      for (const auto& window : tile.windows) ++looks[window.look];
    }
    drags += view->isDragging() ? 1 : 0;
    ASSERT_LE(selected, 1) << step;
    ASSERT_LE(looks[Look::best], 1) << step;
    ASSERT_LE(looks[Look::lit] + looks[Look::best], scene.matches) << step;
    ASSERT_EQ(view->bestMatch().has_value(), scene.matches > 0) << step;
    ASSERT_EQ(view->isDragging(), scene.carried.has_value()) << step;
    ASSERT_EQ(view->isDragging(), looks[Look::lifted] > 0) << step;
    ASSERT_TRUE(!owner.isOutside || view->isDragging()) << step;
  }
  EXPECT_GT(drags, 500) << "or the rest shows little";
}

}  // namespace
}  // namespace tessaspaces
