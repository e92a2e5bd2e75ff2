#include <QAccessible>
#include <QApplication>
#include <QFrame>
#include <QMenu>
#include <QWidget>

#include "ui/x11/PanelTest.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

namespace keys = harness::keys;

class Overlays : public PanelTest {
 protected:
  Overlays() { openBoth(); }
  ~Overlays() override { EXPECT_EQ(leaked(), 0u) << "what was meant for a menu or a field went to the application"; }

  /// Menu, field and message have gone and the panel on the left has the keyboard, and nothing else was said to either.
  void expectPanelHasInput() {
    keyboard.type("z");
    EXPECT_THAT(hears(inputs[0], 1), ElementsAre("typed z"));
    EXPECT_THAT(inputs[1].take(), IsEmpty());
  }

  std::vector<GridMenuItem> items() {
    std::vector<GridMenuItem> items;
    for (const char* title : {"First", "", "Second & more", "Third"}) {
      items.push_back(
          {title, std::string_view(title) != "First", false, [this, title] { chosen.emplace_back(title); }});
    }
    return items;
  }
  void edit(PanelWindow& panel) {
    panel.editName(scene(0).tiles[1].rect, "Old name", [this](auto answer) { answers.push_back(answer); });
  }

  std::vector<std::string> chosen;
  std::vector<std::optional<std::string>> answers;
};

TEST_F(Overlays, AMenuIsUsedByKeys) {
  for (PanelWindow* panel : {&left(), &right()}) {  // the keyboard is on the left in either case
    panel->openMenu({630, 790}, items());
    keyboard.strike(keys::down);
    keyboard.strike(keys::down);
    keyboard.type("q");
    keyboard.strike(keys::enter);
    EXPECT_TRUE(eventually([&] { return !chosen.empty(); }));
    EXPECT_THAT(std::exchange(chosen, {}), ElementsAre("Third"));
    expectPanelHasInput();
    panel->openMenu({10, 10}, items());
    keyboard.strike(keys::escape);
    EXPECT_TRUE(eventually([&] { return system->overlay() == nullptr; }));
    expectPanelHasInput();
    EXPECT_THAT(chosen, IsEmpty());
  }
}

TEST_F(Overlays, AMenuIsUsedByThePointer) {
  left().openMenu({100, 100}, items());
  const auto* menu = widget(0)->findChild<QMenu*>();
  ASSERT_TRUE(menu);
  const auto pointAt = [&](int item) {
    const QPoint at = menu->mapToGlobal(menu->actionGeometry(menu->actions()[item]).center());
    pointer.moveTo(at.x(), at.y());
  };
  pointAt(0);
  pointer.click();  // it is disabled
  pointAt(2);
  pointer.click();
  EXPECT_TRUE(eventually([&] { return !chosen.empty(); }));
  EXPECT_THAT(chosen, ElementsAre("Second & more"));
  for (const int x : {500, 1000}) {
    left().openMenu({100, 100}, items());
    pointer.moveTo(x, 600);
    pointer.click();
    EXPECT_TRUE(eventually([&] { return system->overlay() == nullptr; })) << "a click beside it, on whichever panel";
  }
  expectPanelHasInput();
  EXPECT_EQ(chosen.size(), 1u);

  // Higher than the panel: what the keys come to is brought into view.
  std::vector<GridMenuItem> many(60, {"Desktop", true, false, {}});
  many.back().action = [this] { chosen.emplace_back("last"); };
  left().openMenu({100, 100}, std::move(many));
  menu = widget(0)->findChild<QMenu*>();
  keyboard.strike(keys::up);
  EXPECT_TRUE(eventually([&] {
    return menu->activeAction() == menu->actions().back() &&
           menu->y() + menu->actionGeometry(menu->activeAction()).bottom() < widget(0)->height();
  }));
  keyboard.strike(keys::enter);
  EXPECT_TRUE(eventually([&] { return chosen.size() == 2; }));
  EXPECT_THAT(chosen, ElementsAre("Second & more", "last"));
}

TEST_F(Overlays, ANameIsEdited) {
  edit(left());
  keyboard.type("New");
  keyboard.strike(keys::left);
  keyboard.strike(keys::tab);
  keyboard.type("x");
  keyboard.strike(keys::enter);
  EXPECT_TRUE(eventually([&] { return answers.size() == 1; }));
  EXPECT_THAT(answers.back(), Optional(std::string("Nexw")));
  expectPanelHasInput();

  edit(right());
  keyboard.type("never");
  keyboard.strike(keys::escape);
  EXPECT_TRUE(eventually([&] { return answers.size() == 2; }));
  EXPECT_EQ(answers.back(), std::nullopt);
  expectPanelHasInput();

  edit(left());
  pointer.moveTo(900, 700);
  pointer.click();
  EXPECT_TRUE(eventually([&] { return answers.size() == 3; }));
  EXPECT_THAT(answers.back(), Optional(std::string("Old name")));
  expectPanelHasInput();

  edit(left());
  left().openMenu({10, 10}, items());
  EXPECT_EQ(answers.size(), 4u);
  edit(left());
  left().close();
  ASSERT_EQ(answers.size(), 5u);
  EXPECT_EQ(answers[3], std::nullopt);
  EXPECT_EQ(answers[4], std::nullopt);
}

TEST_F(Overlays, AMessageGoesWithTheNextKeyOrClick) {
  left().alert("Title", "What has happened, and why.");
  keyboard.type("y");
  EXPECT_TRUE(eventually([&] { return system->overlay() == nullptr; }));
  expectPanelHasInput();
  // It comes in the middle of something else, which then goes on.
  edit(right());
  left().alert("Title", "");
  pointer.moveTo(320, 400);  // on it
  pointer.click();
  EXPECT_TRUE(eventually([&] { return widget(0)->findChildren<QFrame*>().isEmpty(); }));
  keyboard.type("n");
  keyboard.strike(keys::enter);
  EXPECT_TRUE(eventually([&] { return !answers.empty(); }));
  EXPECT_THAT(answers, ElementsAre(Optional(std::string("Old namen"))));
  expectPanelHasInput();
}

TEST_F(Overlays, AssistiveTechnologyFindsAndPressesThings) {
  QAccessible::setActive(true);
  GridScene shown = scene(0);
  shown.plus = GridScene::Plus{{600, 600, 30, 30}};
  shown.tiles[2].selected = true;
  shown.keyboard = true;
  left().show(shown);
  QAccessibleInterface* panel = QAccessible::queryAccessibleInterface(widget(0));
  ASSERT_TRUE(panel);
  ASSERT_EQ(panel->childCount(), 5);
  EXPECT_EQ(panel->focusChild(), panel->child(2));
  QAccessibleInterface* tile = panel->child(0);
  EXPECT_EQ(tile->text(QAccessible::Name), "Desktop 1");
  EXPECT_EQ(tile->text(QAccessible::Description), "current desktop");
  EXPECT_TRUE(tile->state().active);
  EXPECT_EQ(tile->rect(), QRect(20, 100, 280, 250));
  ASSERT_EQ(tile->childCount(), 2);
  QAccessibleInterface* behind = tile->child(1);
  EXPECT_EQ(behind->text(QAccessible::Name), "Window 11");
  EXPECT_EQ(behind->parent(), tile);
  EXPECT_EQ(tile->indexOfChild(behind), 1);
  // The window in front covers its middle, (150, 200); it reaches from (110, 160) to (210, 240).
  behind->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  const auto heard = inputs[0].take();
  ASSERT_EQ(heard.size(), 2u);
  int x = 0;
  int y = 0;
  ASSERT_EQ(std::sscanf(heard[0].c_str(), "press left %d,%d", &x, &y), 2) << heard[0];
  EXPECT_TRUE(behind->rect().contains(x, y));
  EXPECT_FALSE(tile->child(0)->rect().contains(x, y));
  panel->child(4)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_THAT(inputs[0].take(), ElementsAre("press left 615,615", "release left 615,615"));

  // What has gone is not there any more, also for who still asks for it.
  shown.tiles.erase(shown.tiles.begin());
  shown.plus.reset();
  left().show(shown);
  EXPECT_EQ(panel->childCount(), 3);
  EXPECT_EQ(panel->child(0)->text(QAccessible::Name), "Desktop 2");
  QAccessible::setActive(false);
}

}  // namespace
}  // namespace tessaspaces
