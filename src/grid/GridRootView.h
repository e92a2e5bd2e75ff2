#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "grid/GridAction.h"
#include "grid/GridLayout.h"
#include "grid/GridPanelView.h"
#include "grid/TileBackgrounds.h"

namespace tessaspaces {

struct GridRootState;

/// What a root view asks of the panel that it belongs to. Main thread.
class GridRootOwner {
 public:
  virtual ~GridRootOwner() = default;
  virtual void handle(const GridAction& action) = 0;
  /// The scene is another one now.
  virtual void redraw() = 0;

  /// A preview is being dragged beyond the panel's screen (global screen coordinates, origin at the bottom left of the
  /// first screen), or no more: absent.
  virtual void dragOutside(std::optional<Point> cursor) = 0;
  /// It was let go there. `windowTopLeft`: of the preview in hand, in the same coordinates.
  virtual void dropOutside(const SpaceWindow& window, SpaceID fromSpace, Point cursor, Point windowTopLeft) = 0;

  /// The keyboard goes to the next display's panel, or the one before.
  virtual void passKeyboard(bool backwards) = 0;
  /// The filter was changed by typing: the other panels follow.
  virtual void filterChanged(const std::string& filter) = 0;
  /// Enter with a filter: goes to the best match of all panels. False where the panel's own best match is to be taken,
  /// which then comes by `handle`.
  virtual bool goToBestMatch() { return false; }
  virtual void rename(const DesktopRef& desktop, const Rect& tile) = 0;
  virtual void closeWindow(const SpaceWindow& window) = 0;
  virtual void addDesktop() = 0;
  virtual void removeDesktop(const DesktopRef& desktop) = 0;
  virtual void toggleView() = 0;
  virtual void openMenu(Point at, std::vector<GridMenuItem> items) = 0;
  virtual void flyBack(const GridScene::Window& window, const Rect& from, const Rect& to) = 0;
  /// See GridPanelInput::hotKey.
  virtual bool hotKey(KeyCombo combo, bool repeated) = 0;
  virtual void covered() = 0;
};

/// The content of one panel: knows what it shows, what is under the pointer, selected, filtered and in the user's hand,
/// turns input into actions and all of it into a scene. Draws nothing and asks the system nothing. Main thread.
class GridRootView final : public GridPanelInput {
 public:
  explicit GridRootView(GridRootOwner& owner);
  ~GridRootView() override;

  // What is shown. Each takes effect at once; the owner asks for the scene when it wants it (no `redraw` is called).
  /// Keeps selection, hover and drag where their desktop or window is still there, else drops them.
  void setSnapshot(SpacesSnapshot snapshot);
  /// The panel's screen (its frame, name) and the grid's size on it.
  void setScreen(const ScreenRef& screen, int rows, int columns);
  void setExplodedAll(bool exploded);
  /// What stands in for DesktopInfo's own pictures: backgrounds by space, application names by pid.
  void setBackgrounds(std::map<SpaceID, TileBackground> backgrounds);
  void setApplicationNames(std::map<std::int32_t, std::string> names);
  /// The panel has the keyboard. The first time after `reset` the selection goes to the current desktop.
  void setKeyboard(bool keyboard);
  void setFilter(const std::string& filter);
  void setBusyAdding(bool busy);
  /// Whether desktops can be added here at all.
  void setCanAdd(bool canAdd);
  /// As for a new opening: no selection, filter, hover or drag.
  void reset();

  [[nodiscard]] const GridLayout& layout() const;
  [[nodiscard]] GridScene scene() const;
  [[nodiscard]] bool isDragging() const;
  /// Where a zoom to that desktop goes; absent when it has no tile.
  [[nodiscard]] std::optional<Rect> zoomRect(SpaceID space) const;
  /// The desktop under the keyboard's selection; null for none.
  [[nodiscard]] DesktopRef selectedDesktop() const;
  /// The best match of the filter on this panel, with its desktop: smaller `rank` is better; absent when none matches.
  struct Match {
    DesktopRef desktop;
    SpaceWindow window;
    int rank = 0;
  };
  [[nodiscard]] std::optional<Match> bestMatch() const;

  // Drags between panels. Points in global screen coordinates, origin at the bottom left of the first screen.
  [[nodiscard]] Point screenPoint(Point inRoot) const;
  [[nodiscard]] Point rootPoint(Point onScreen) const;
  /// A preview of another panel is held over this one; absent: no more.
  void setExternalHover(std::optional<Point> at);
  /// What is in the user's hand here, where it would be in another panel's root view; absent when nothing is.
  [[nodiscard]] std::optional<GridScene::Window> carriedIn(const GridRootView& other) const;
  /// Shows what another panel's user has in hand above this one; absent: nothing any more.
  void showCarried(std::optional<GridScene::Window> window);
  [[nodiscard]] std::optional<GridLayout::DropTarget> externalDropTarget(Point cursor, Point windowTopLeft) const;
  /// The drag that is under way ends with nothing done.
  void cancelDrag();
  /// The preview of a window that could not be dropped flies home from where it was let go (top left, on the screen).
  /// Nothing when the window is not to be seen on that space any more.
  void returnPreview(WindowID window, SpaceID space, Point windowTopLeft);

  void pointerMoved(Point at) override;
  void pointerLeft() override;
  void pressed(GridButton button, Point at) override;
  void released(GridButton button, Point at) override;
  void key(GridKey key) override;
  void typed(const std::string& text) override;
  bool hotKey(KeyCombo combo, bool repeated) override;
  void covered() override;

 private:
  std::unique_ptr<GridRootState> state_;
};

}  // namespace tessaspaces
