#include "grid/RootViewTest.h"

namespace tessaspaces {

void RootViewTest::SetUp() {
  // The second screen's top is 100 points below the first one's.
  start("first 1920x1200 | A* ; second 1920x1080+1920+100 | B*");
  view = std::make_unique<GridRootView>(owner);
}

void RootViewTest::show(int count) {
  desktops.clear();
  for (int i = 1; i <= count; ++i) addDesktop(static_cast<SpaceID>(i));
  view->reset();
  view->setScreen(sim->screens().screens()[1], 2, 2);
  refresh();
  view->setKeyboard(true);
  owner.take();
}

void RootViewTest::addDesktop(SpaceID space) {
  auto desktop = std::make_shared<DesktopInfo>(space, "second");
  desktop->screen = sim->screens().screens()[1];
  desktop->isCurrent = space == 2;
  desktops.push_back(std::move(desktop));
}

void RootViewTest::addWindow(SpaceID desktop, WindowID id, Rect bounds, const std::string& title, std::int32_t pid) {
  desktops[desktop - 1]->windows.push_back({id, title, pid, bounds});
  refresh();
}

void RootViewTest::removeWindow(SpaceID desktop, WindowID id) {
  std::erase_if(desktops[desktop - 1]->windows, [&](const SpaceWindow& each) { return each.id == id; });
  refresh();
}

void RootViewTest::refresh() {
  SpacesSnapshot snapshot;
  for (const auto& desktop : desktops) snapshot.desktops.push_back(std::make_shared<DesktopInfo>(*desktop));
  view->setSnapshot(std::move(snapshot));
}

GridScene::Tile RootViewTest::tile(SpaceID space) const {
  for (auto& each : view->scene().tiles) {
    if (each.space == space) return each;
  }
  ADD_FAILURE() << "no tile for " << space;
  return {};
}

GridScene::Window RootViewTest::window(SpaceID space, WindowID id) const {
  for (auto& each : tile(space).windows) {
    if (each.id == id) return each;
  }
  ADD_FAILURE() << "no window " << id << " on " << space;
  return {};
}

Point RootViewTest::corner(SpaceID space) const {
  const auto content = tile(space).content;
  return {content.maxX() - 1, content.maxY() - 1};
}

SpaceID RootViewTest::selection() const {
  const auto scene = view->scene();
  if (scene.plus && scene.plus->selected) return 99;
  for (const auto& each : scene.tiles) {
    if (each.selected) return each.space;
  }
  return 0;
}

void RootViewTest::click(GridButton button, Point where) {
  view->pressed(button, where);
  view->released(button, where);
}

void RootViewTest::drag(SpaceID space, WindowID id, Point to) {
  view->pressed(GridButton::left, at(space, id));
  view->pointerMoved(to);
}

void RootViewTest::keys(std::string_view keys) {
  // In the order of GridKey.
  for (const char key : keys) view->key(static_cast<GridKey>(std::string_view("<>^vHE").find(key)));
}

}  // namespace tessaspaces
