#pragma once

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "base/Overloaded.h"
#include "grid/GridRootView.h"
#include "support/CoreTest.h"

namespace tessaspaces {

/// Writes down in words what a root view asks of its panel.
class RecordingOwner final : public GridRootOwner {
 public:
  void handle(const GridAction& action) override {
    std::visit(Overloaded{[&](const GridActions::MoveWindow& move) {
                            moved = move;
                            say("move {} from {} to {}", move.window, move.fromSpace, move.to->spaceID);
                          },
                          [&](const GridActions::SwitchSpace& to) { say("go {}", to.space); },
                          [&](const GridActions::SwitchSpaceAndActivate& to) {
                            say("go {} to window {}", to.space, to.window.id);
                          },
                          [&](const GridActions::Close&) { say("close"); }},
               action);
  }
  void redraw() override { ++redraws; }
  void dragOutside(std::optional<Point> cursor) override {
    isOutside = cursor.has_value();
    say("{}", cursor ? fmt::format("outside {},{}", cursor->x, cursor->y) : "inside");
  }
  void dropOutside(const SpaceWindow& window, SpaceID fromSpace, Point at, Point topLeft) override {
    say("drop {} from {} at {},{}", window.id, fromSpace, at.x, at.y);
    grip = {at.x - topLeft.x, topLeft.y - at.y};
  }
  void passKeyboard(bool backwards) override { say("{}", backwards ? "back" : "pass"); }
  void filterChanged(const std::string& filter) override { say("filter '{}'", filter); }
  bool goToBestMatch() override {
    if (knowsTheBest) say("best of all");
    return knowsTheBest;
  }
  void rename(const DesktopRef& desktop, const Rect& tile) override {
    say("rename {}{}", desktop->spaceID, tile.isEmpty() ? " nowhere" : "");
  }
  void closeWindow(const SpaceWindow& window) override { say("close window {}", window.id); }
  void addDesktop() override { say("add"); }
  void removeDesktop(const DesktopRef& desktop) override { say("remove {}", desktop->spaceID); }
  void toggleView() override { say("toggle"); }
  void openMenu(Point, std::vector<GridMenuItem> items) override {
    say("menu");
    menu = std::move(items);
  }
  void flyBack(const GridScene::Window& window, const Rect& from, const Rect& to) override {
    say("fly back {}", window.id);
    flown = {from, to};
  }
  bool hotKey(KeyCombo combo, bool repeated) override {
    say("hot key {}{}", combo.keyCode, repeated ? " again" : "");
    return true;
  }
  void covered() override { say("covered"); }

  template <class... Args>
  void say(fmt::format_string<Args...> format, Args&&... args) {
    said.push_back(fmt::format(format, std::forward<Args>(args)...));
  }
  /// What was asked since the last call, but for redraws.
  std::vector<std::string> take() { return std::exchange(said, {}); }

  std::vector<std::string> said;
  int redraws = 0;
  bool knowsTheBest = false;
  bool isOutside = false;
  Point grip;
  std::vector<GridMenuItem> menu;
  std::optional<GridActions::MoveWindow> moved;
  std::pair<Rect, Rect> flown;
};

/// A panel on the second of two screens with desktops 1, 2, ... of which the second is current.
class RootViewTest : public CoreTest {
 protected:
  void SetUp() override;
  /// That many desktops in a grid of 2 x 2, with the keyboard.
  void show(int count);
  void addDesktop(SpaceID space);
  void addWindow(SpaceID desktop, WindowID id, Rect bounds, const std::string& title = "", std::int32_t pid = 0);
  void removeWindow(SpaceID desktop, WindowID id);
  /// Hands copies of `desktops` over, as a new look at the system would.
  void refresh();

  [[nodiscard]] GridScene::Tile tile(SpaceID space) const;
  [[nodiscard]] GridScene::Window window(SpaceID space, WindowID id) const;
  [[nodiscard]] Point at(SpaceID space, WindowID id) const { return window(space, id).rect.center(); }
  /// A point of a tile where no window is.
  [[nodiscard]] Point corner(SpaceID space) const;
  /// The space selected as the user sees it, 0 for none, 99 for the plus.
  [[nodiscard]] SpaceID selection() const;
  void click(GridButton button, Point where);
  /// Takes hold of a preview and moves it somewhere.
  void drag(SpaceID space, WindowID id, Point to);
  /// Arrows "<>^v", "H"ome, "E"nd.
  void keys(std::string_view keys);

  static constexpr Rect small{2020, 150, 400, 300};
  static constexpr Point gap{960, 300};
  RecordingOwner owner;
  std::unique_ptr<GridRootView> view;
  std::vector<DesktopRef> desktops;
};

}  // namespace tessaspaces
