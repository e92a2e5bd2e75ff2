#include "grid/RootViewTest.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Look = GridScene::Window::Look;

TEST_F(RootViewTest, ArrowsMoveTheSelection) {
  constexpr auto round = CirculationJoin::sameRow;
  constexpr auto onwards = CirculationJoin::nextRow;
  const struct {
    int desktops;
    bool canAdd;
    CirculationJoin join;
    std::string_view keys;
    SpaceID selected;
  } cases[] = {
      {4, false, onwards, "", 2},
      {4, false, onwards, ">", 3},
      {4, false, round, ">", 1},
      {4, false, onwards, "vv", 4},
      {4, false, onwards, "v>", 1},
      {4, false, onwards, "H<E<", 3},
      {6, false, onwards, "E", 4},  // there are no more tiles
      // The plus comes after the last desktop.
      {4, true, onwards, "E>", 99},
      {4, true, onwards, "E>>", 1},
      {4, true, round, "E>>", 3},
      {4, true, onwards, "E><", 4},
      {4, true, onwards, "E>^", 2},
      {4, true, onwards, "E>H", 1},
      {1, true, onwards, ">", 99},
      {0, true, onwards, "v", 99},
      // In a cell of the grid it is left upwards as a desktop there would be.
      {3, true, onwards, "E>^", 2},
      {3, true, onwards, "E>v", 99},
      {0, true, onwards, "><", 99},
      {0, false, onwards, ">vHE", 0},
  };
  for (const auto& c : cases) {
    Settings::setCirculationJoin(c.join);
    view->setCanAdd(c.canAdd);
    show(c.desktops);
    keys(c.keys);
    EXPECT_EQ(selection(), c.selected) << c.desktops << " " << c.keys;
  }
  EXPECT_THAT(owner.take(), IsEmpty());
  Settings::setCirculateVertically(true);
  show(1);
  view->setCanAdd(true);
  keys(">^");
  EXPECT_EQ(selection(), 99U) << "alone in its column";
}

TEST_F(RootViewTest, TheSelectionIsShownToThoseWhoUseIt) {
  show(4);
  view->reset();
  refresh();
  EXPECT_EQ(selection(), 0U);
  EXPECT_FALSE(view->selectedDesktop());
  keys(">");
  EXPECT_EQ(selection(), 3U) << "a key arrived after all";
  view->setKeyboard(true);
  EXPECT_EQ(selection(), 3U);
  view->setKeyboard(false);
  EXPECT_EQ(selection(), 0U);
  view->setKeyboard(true);
  EXPECT_EQ(selection(), 3U) << "where it was left";
  view->key(GridKey::tab);
  view->key(GridKey::backTab);
  EXPECT_THAT(owner.take(), ElementsAre("pass", "back"));
}

TEST_F(RootViewTest, TheSelectionOutlivesARefresh) {
  view->setCanAdd(true);
  show(4);
  keys("E");
  desktops[3]->isCurrent = true;
  desktops.erase(desktops.begin());
  refresh();
  EXPECT_EQ(view->selectedDesktop()->spaceID, 4U) << "the same desktop, wherever it is";
  desktops.pop_back();
  refresh();
  EXPECT_EQ(selection(), 3U) << "the one nearest to it";
  keys(">");
  refresh();
  EXPECT_EQ(selection(), 99U);
  EXPECT_FALSE(view->selectedDesktop());
  view->setCanAdd(false);
  EXPECT_EQ(selection(), 3U);
  desktops.clear();
  refresh();
  EXPECT_EQ(selection(), 0U);
  show(3);
  EXPECT_EQ(selection(), 2U);
}

TEST_F(RootViewTest, KeysDoWhatTheMouseDoes) {
  view->setCanAdd(true);
  show(3);
  view->key(GridKey::enter);
  keys(">>");
  view->key(GridKey::enter);
  view->key(GridKey::insert);
  keys("H");
  view->key(GridKey::rename);
  view->key(GridKey::menu);
  view->typed("3");
  view->typed("4");
  view->typed("0");
  view->typed("  ");
  view->key(GridKey::backspace);
  view->key(GridKey::escape);
  EXPECT_THAT(owner.take(), ElementsAre("go 2", "add", "add", "rename 1", "menu", "go 3", "close"));
  EXPECT_TRUE(view->hotKey({49, KeyCombo::option}, true));
  view->setCanAdd(false);
  view->key(GridKey::insert);
  EXPECT_THAT(owner.take(), ElementsAre("hot key 49 again"));
  view->setScreen(sim->screens().screens()[1], 3, 4);
  for (SpaceID space = 4; space <= 10; ++space) addDesktop(space);
  refresh();
  view->typed("0");
  EXPECT_THAT(owner.take(), ElementsAre("go 10"));
}

class RootViewFilterTest : public RootViewTest {
 protected:
  void SetUp() override {
    RootViewTest::SetUp();
    show(4);
    view->setApplicationNames({{31, "Editor"}, {32, "Mail"}});
    addWindow(1, 7, small, "Old notes", 31);
    addWindow(3, 8, small, "Notes", 31);
    addWindow(3, 9, {2600, 700, 300, 200}, "Inbox", 32);
    addWindow(4, 10, {100, 100, 300, 200}, "Notes elsewhere", 31);  // on the other screen
  }
};

TEST_F(RootViewFilterTest, TypingFindsWindows) {
  const auto help = view->scene().hint;
  view->typed("n");
  view->typed("ot");
  EXPECT_THAT(owner.take(), ElementsAre("filter 'n'", "filter 'not'"));
  EXPECT_EQ(view->scene().matches, 2);
  EXPECT_EQ(window(1, 7).look, Look::lit);
  EXPECT_EQ(window(3, 8).look, Look::best);
  EXPECT_EQ(window(3, 9).look, Look::dimmed);
  EXPECT_FALSE(tile(3).dimmed);
  EXPECT_TRUE(tile(2).dimmed);
  EXPECT_TRUE(tile(4).dimmed);
  EXPECT_EQ(view->bestMatch()->window.id, 8U);
  EXPECT_EQ(view->bestMatch()->desktop->spaceID, 3U);
  EXPECT_EQ(view->scene().hint, "Windows found: 2 · Enter goes to the best match · Esc ends the search");
  view->pointerMoved(at(3, 9));
  EXPECT_EQ(window(3, 9).look, Look::hovered);

  view->key(GridKey::enter);
  owner.knowsTheBest = true;
  view->key(GridKey::enter);
  EXPECT_THAT(owner.take(), ElementsAre("go 3 to window 8", "best of all"));
  keys("H");
  view->key(GridKey::enter);
  EXPECT_THAT(owner.take(), ElementsAre("go 1")) << "the selection was chosen after typing";
  view->typed("4");
  view->key(GridKey::backspace);
  view->key(GridKey::enter);
  EXPECT_THAT(owner.take(), ElementsAre("filter 'not4'", "filter 'not'", "best of all"));
  removeWindow(3, 8);
  EXPECT_EQ(window(1, 7).look, Look::best);

  view->key(GridKey::escape);
  EXPECT_EQ(view->scene().filter, "");
  EXPECT_EQ(view->scene().hint, help);
  EXPECT_EQ(window(1, 7).look, Look::plain);
  view->key(GridKey::escape);
  EXPECT_THAT(owner.take(), ElementsAre("filter ''", "close"));
}

TEST_F(RootViewFilterTest, AFilterTypedElsewhereCountsHereToo) {
  view->setFilter("mai");
  EXPECT_THAT(owner.take(), IsEmpty());
  EXPECT_EQ(view->bestMatch()->rank, 1);
  EXPECT_EQ(window(3, 9).look, Look::best);
  view->setFilter("editor");
  EXPECT_EQ(view->bestMatch()->window.id, 7U) << "of equals the first";
  view->setFilter("nobody");
  EXPECT_FALSE(view->bestMatch());
  EXPECT_EQ(view->scene().hint, "No such window · Esc ends the search");
  view->key(GridKey::enter);
  view->key(GridKey::remove);
  EXPECT_THAT(owner.take(), IsEmpty());
  view->setApplicationNames({{31, "Nobody's"}});
  EXPECT_EQ(view->scene().matches, 2);
  view->reset();
  EXPECT_EQ(view->scene().filter, "");
}

TEST_F(RootViewFilterTest, DeleteTakesWhatIsMeant) {
  view->pointerMoved(at(1, 7));
  view->key(GridKey::remove);
  EXPECT_THAT(owner.take(), ElementsAre("remove 2")) << "the pointer was there before the panel was";
  view->pointerMoved({at(1, 7).x + 1, at(1, 7).y});
  view->key(GridKey::remove);
  EXPECT_THAT(owner.take(), ElementsAre("close window 7"));
  keys("H");
  view->key(GridKey::remove);
  EXPECT_THAT(owner.take(), IsEmpty()) << "the keys were used last, and the first desktop has a window";
  view->typed("inb");
  view->key(GridKey::remove);
  view->setFilter("");
  owner.said.erase(owner.said.begin());
  EXPECT_THAT(owner.take(), ElementsAre("close window 9"));
  // A window on every desktop keeps none of them.
  for (SpaceID space = 1; space <= 4; ++space) addWindow(space, 20, small);
  keys(">");
  view->key(GridKey::remove);
  EXPECT_THAT(owner.take(), ElementsAre("remove 2"));
  show(1);
  view->key(GridKey::remove);
  EXPECT_THAT(owner.take(), IsEmpty()) << "the only one";
}

TEST_F(RootViewFilterTest, MenusOfferWhatCanBeDone) {
  const auto titles = [&] {
    std::vector<std::string> all;
    for (const auto& item : owner.menu) all.push_back((item.enabled ? "" : "-") + item.title);
    return all;
  };
  const auto choose = [&](std::size_t index) {
    owner.take();
    owner.menu[index].action();
    return owner.take();
  };
  click(GridButton::right, at(1, 7));
  EXPECT_THAT(titles(), ElementsAre("Go there", "Close window", "", "Move to Desktop 2", "Move to Desktop 3",
                                    "Move to Desktop 4"));
  EXPECT_THAT(choose(0), ElementsAre("go 1 to window 7"));
  EXPECT_THAT(choose(1), ElementsAre("close window 7"));
  view->setExplodedAll(true);
  EXPECT_THAT(choose(4), ElementsAre("move 7 from 1 to 3"));
  EXPECT_EQ(owner.moved->imageRect, tile(3).content);
  EXPECT_NEAR(owner.moved->dropInRoot.x - tile(3).content.x, 100.0 / 1920 * tile(3).content.width, 1e-9);
  EXPECT_NEAR(owner.moved->dropInRoot.y - tile(3).content.y, 50.0 / 1080 * tile(3).content.height, 1e-9);
  removeWindow(1, 7);
  EXPECT_THAT(choose(4), IsEmpty()) << "it has gone while the menu was open";

  click(GridButton::right, corner(2));
  EXPECT_THAT(titles(), ElementsAre("Go there", "Rename…", "Remove desktop"));
  EXPECT_THAT(choose(0), ElementsAre("go 2"));
  EXPECT_THAT(choose(1), ElementsAre("rename 2"));
  EXPECT_THAT(choose(2), ElementsAre("remove 2"));
  click(GridButton::right, corner(3));
  EXPECT_THAT(titles(), ElementsAre("Go there", "Rename…", "-Remove desktop"));

  click(GridButton::right, gap);
  EXPECT_THAT(titles(), ElementsAre("Exploded view", "-Add desktop", "", "Close"));
  EXPECT_TRUE(owner.menu[0].checked);
  EXPECT_THAT(choose(0), ElementsAre("toggle"));
  EXPECT_THAT(choose(3), ElementsAre("close"));

  view->typed("inb");
  view->key(GridKey::menu);
  EXPECT_EQ(titles().size(), 6U) << "of the best match";
  keys("H");
  view->key(GridKey::menu);
  EXPECT_EQ(titles().size(), 3U) << "of the selected desktop";
  view.reset();
  EXPECT_THAT(choose(0), IsEmpty());
}

}  // namespace
}  // namespace tessaspaces
