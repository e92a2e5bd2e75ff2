#pragma once

// What a root view knows. Private to the GridRoot*.cpp files, which share the view out by topic.

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "grid/GridDrag.h"
#include "grid/GridRootView.h"
#include "grid/WindowFilter.h"
#include "model/Navigation.h"

namespace tessaspaces {

/// A thing under the pointer, by what it is rather than where: a refresh does not change it.
struct GridTarget {
  enum class Kind { nothing, plus, tile, window };
  Kind kind = Kind::nothing;
  SpaceID space = 0;
  WindowID window = 0;
  friend bool operator==(const GridTarget&, const GridTarget&) = default;
};

/// A button that is held.
struct GridPress {
  GridButton button = GridButton::left;
  Point at;
  GridTarget target;
};

/// How well each window of each tile answers to the filter.
struct GridMatches {
  std::vector<std::vector<std::optional<int>>> ranks;
  int count = 0;
  std::optional<GridLayout::WindowHit> best;
};

struct GridRootState {
  explicit GridRootState(GridRootOwner& panel) : owner(panel) {}

  GridRootOwner& owner;
  ScreenRef screen;
  std::map<SpaceID, TileBackground> backgrounds;
  std::map<std::int32_t, std::string> applicationNames;
  bool busyAdding = false;
  bool canAdd = false;

  WindowFilter filter;
  std::optional<GridDrag> drag;
  std::optional<GridPress> press;
  std::optional<Point> pointer;
  std::optional<Point> externalHover;  // on the screen
  std::optional<GridScene::Window> externalCarried;
  /// The pointer moved later than a key was pressed: what it is over is meant.
  bool pointerLeads = false;

  bool keyboard = false;
  bool keysUsed = false;
  SpaceID selected = 0;  // 0: none
  int selectedTile = 0;  // where it was, for when it is gone
  bool plusSelected = false;
  /// Since the filter was last typed at: the user wants the selection, not the best match.
  bool selectionMoved = false;

  /// Goes with the view, so that a menu that outlives it can tell.
  std::shared_ptr<const bool> alive = std::make_shared<const bool>(true);

  // What is shown. The layout and the matches are made when they are asked for, once for all that was set.
  void changed();
  void filterChanged() { matches_.reset(); }
  void setScreen(const ScreenRef& shownOn, int rows, int columns);
  void setSnapshot(SpacesSnapshot snapshot);
  void setExplodedAll(bool exploded);
  [[nodiscard]] const GridLayout& layout() const;
  [[nodiscard]] const GridMatches& matches() const;
  [[nodiscard]] Size bounds() const;
  [[nodiscard]] bool isInside(Point at) const;
  [[nodiscard]] Point screenPoint(Point inRoot) const;
  [[nodiscard]] Point rootPoint(Point onScreen) const;
  [[nodiscard]] int tileCount() const { return static_cast<int>(layout().tileRects().size()); }
  [[nodiscard]] const DesktopRef& desktopAt(int tile) const;
  [[nodiscard]] std::optional<int> tileOf(SpaceID space) const;
  [[nodiscard]] std::optional<GridLayout::WindowHit> find(SpaceID space, WindowID window) const;
  [[nodiscard]] const SpaceWindow& windowAt(GridLayout::WindowHit at) const;
  /// All-zero: not to be seen.
  [[nodiscard]] Rect previewRect(GridLayout::WindowHit at) const;
  [[nodiscard]] std::string applicationOf(const SpaceWindow& window) const;
  [[nodiscard]] std::optional<Rect> plus() const;

  // Scene
  [[nodiscard]] GridScene scene() const;
  // `under`: what is hovered, found out once for all of them.
  [[nodiscard]] GridScene::Tile sceneTile(int tile, const GridTarget& under) const;
  [[nodiscard]] GridScene::Window::Look lookOf(GridLayout::WindowHit at, const GridTarget& under) const;
  /// As it looks when nothing is known of it but what it is.
  [[nodiscard]] GridScene::Window plainWindow(GridLayout::WindowHit at) const;
  [[nodiscard]] std::optional<GridScene::Window> carried() const;
  [[nodiscard]] std::optional<int> dropTile() const;
  [[nodiscard]] std::string hint() const;

  // Pointer
  [[nodiscard]] GridTarget targetAt(Point at) const;
  [[nodiscard]] std::optional<GridLayout::WindowHit> matchAt(Point at) const;
  /// Nothing during a drag, and where there is no pointer.
  [[nodiscard]] GridTarget hovered() const;
  void pointerMoved(Point at);
  void pointerLeft();
  void pressed(GridButton button, Point at);
  void released(GridButton button, Point at);
  void click(const GridTarget& target);
  void startDrag();
  void drop();
  /// Ends the drag with nothing done; absent when there was none.
  std::optional<GridDrag> endDrag();
  void cancelDrag();
  /// After the tiles changed.
  void keepDrag();
  void flyHome(WindowID window, SpaceID space, const Rect& from);

  // Selection
  [[nodiscard]] bool selectionShown() const { return keyboard || keysUsed; }
  [[nodiscard]] DesktopRef selectedDesktop() const;
  void select(int tile);
  void selectPlus();
  void forgetSelection();
  /// Where nothing is selected: the current desktop.
  void selectSomething();
  /// After the tiles changed.
  void keepSelection();

  // Keys
  void key(GridKey key);
  void typed(const std::string& text);
  /// The user turned to the keys.
  void useKeys();
  void move(GridDirection direction);
  void moveToTile(int tile);
  void go();
  void escape();
  void editFilter(bool isAnother);
  void removeSomething();
  void add();
  void rename();
  [[nodiscard]] bool bestIsMeant() const { return !filter.isEmpty() && !selectionMoved; }

  // Menus
  [[nodiscard]] bool isRemovable(const DesktopInfo& desktop) const;
  void openMenu(Point at, const GridTarget& target);
  void openMenuAtSelection();
  [[nodiscard]] GridMenuItem item(std::string_view key, std::function<void()> action) const;
  [[nodiscard]] std::vector<GridMenuItem> windowMenu(const GridTarget& target);
  [[nodiscard]] std::vector<GridMenuItem> tileMenu(const GridTarget& target);
  [[nodiscard]] std::vector<GridMenuItem> backgroundMenu();
  void activate(SpaceID space, WindowID window);
  void close(SpaceID space, WindowID window);
  /// To another desktop, at the same place of the screen.
  void moveTo(SpaceID from, WindowID window, SpaceID to);
  void renameDesktop(SpaceID space);
  void removeDesktop(SpaceID space);

 private:
  mutable GridLayout grid_;
  mutable bool stale_ = true;
  mutable std::optional<GridMatches> matches_;
};

}  // namespace tessaspaces
