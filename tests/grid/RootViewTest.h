#pragma once

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "grid/GridRootView.h"
#include "support/CoreTest.h"

namespace tessaspaces {

/// Writes down in words what a root view asks of its panel.
class RecordingOwner final : public GridRootOwner {
 public:
  void handle(const GridAction& action) override;
  void redraw() override { ++redraws; }
  void dragOutside(std::optional<Point> cursor) override;
  void dropOutside(const SpaceWindow& window, SpaceID fromSpace, Point cursor, Point windowTopLeft) override;
  void passKeyboard(bool backwards) override { say("{}", backwards ? "back" : "pass"); }
  void filterChanged(const std::string& filter) override { say("filter '{}'", filter); }
  bool goToBestMatch() override;
  void rename(const DesktopRef& desktop, const Rect& tile) override;
  void closeWindow(const SpaceWindow& window) override { say("close window {}", window.id); }
  void addDesktop() override { say("add"); }
  void removeDesktop(const DesktopRef& desktop) override { say("remove {}", desktop->spaceID); }
  void toggleView() override { say("toggle"); }
  void openMenu(Point at, std::vector<GridMenuItem> items) override;
  void flyBack(const GridScene::Window& window, const Rect& from, const Rect& to) override;
  bool hotKey(KeyCombo combo, bool repeated) override;
  void covered() override { say("covered"); }

  /// What was asked since the last call, but for redraws.
  std::vector<std::string> take() { return std::exchange(said, {}); }

  std::vector<std::string> said;
  int redraws = 0;
  bool knowsTheBest = false;
  /// A preview is beyond the panel, as far as the owner was told.
  bool isOutside = false;
  std::vector<GridMenuItem> menu;
  std::optional<GridActions::MoveWindow> moved;
  Rect flownFrom, flownTo;

 private:
  template <class... Args>
  void say(fmt::format_string<Args...> format, Args&&... args) {
    said.push_back(fmt::format(format, std::forward<Args>(args)...));
  }
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
  /// Look of the window on that desktop; the rectangle alone matters where it is not to be seen.
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
