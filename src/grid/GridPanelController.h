#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "bridges/DesktopEditing.h"
#include "grid/GridContents.h"
#include "grid/GridPanelView.h"
#include "grid/GridRootView.h"

namespace tessaspaces {

/// One panel of the overview: opens, closes and zooms its window over a display, and carries out what the user does in
/// it. Its window is made with it and kept, hidden, between openings. Main thread.
class GridPanelController final : public GridRootOwner, public std::enable_shared_from_this<GridPanelController> {
 public:
  GridPanelController(const MakeGridPanelView& makeView, std::shared_ptr<GridContents> contents);
  ~GridPanelController() override;
  GridPanelController(const GridPanelController&) = delete;
  GridPanelController& operator=(const GridPanelController&) = delete;

  /// The panel of the display with the menu bar.
  static std::weak_ptr<GridPanelController> shared;

  /// Fits the hidden panel to the screen, so that pictures can be asked for ahead in the size that they will have.
  void prepare(const ScreenRef& screen);
  /// Opens it over the screen (null: the one under the pointer) with what GridContents has; an open one takes that in.
  /// `primary`: it gets the keyboard; absent counts as true.
  void show(const ScreenRef& on = nullptr, std::optional<bool> primary = std::nullopt);
  /// Open, and not on its way out.
  [[nodiscard]] bool isVisible() const { return phase_ == Phase::open; }
  /// Its window is there, be it on its way out.
  [[nodiscard]] bool isOnScreen() const { return phase_ != Phase::hidden; }

  // `restoreFocus`: the window that had the keyboard is to have it again; otherwise a switch decides. A panel holds the
  // keyboard without taking the focus from its window, so letting go does either.
  /// At once. Nothing when it is hidden.
  void close(bool restoreFocus = true);
  /// Into the tile of the current desktop where zooms are wanted. Nothing when it is not visible.
  void closeAnimated(bool restoreFocus = true);
  /// Between the standard and the exploded view, until it is closed.
  void toggleGridView();
  /// Takes in changed settings.
  void reload();

  /// The point (global, origin at the bottom left of the first screen) lies on the screen that it is open on.
  [[nodiscard]] bool containsOnScreen(Point point) const;
  /// Moves a window that lies on a desktop of this panel to a tile of `target`, in whose root view the point and the
  /// rectangle are: see GridActions::MoveWindow.
  void moveWindow(WindowID window, SpaceID from, const DesktopRef& to, Point dropInRoot, const Rect& imageRect,
                  GridPanelController& target);
  /// Gives the keyboard to this panel or takes it from it.
  void setKeyboard(bool keyboard);
  [[nodiscard]] bool hasKeyboard() const { return keyboard_; }
  void setFilter(const std::string& filter);

  /// As large as previews need to be to be drawn here, in the quality that the settings ask for. Absent before it was
  /// fitted to a screen, and with no tile.
  [[nodiscard]] std::optional<PreviewLimits> previewLimits() const;
  [[nodiscard]] const ScreenRef& screen() const { return screen_; }

  /// What it shows; of it the coordinator and the self-test use what concerns other panels and the geometry.
  GridRootView root;

  // What concerns the other panels. Each may be empty.
  std::function<void()> onCloseAll;
  /// It is about to switch to another desktop.
  std::function<void()> onWillSwitch;
  std::function<void(GridPanelController& source, const SpaceWindow& window, SpaceID fromSpace, Point cursor,
                     Point windowTopLeft)>
      onDropOutside;
  std::function<void(GridPanelController& source, std::optional<Point> cursor)> onDragOutside;
  std::function<void(GridPanelController& source, bool backwards)> onPassKeyboard;
  std::function<void(GridPanelController& source, const std::string& filter)> onFilterChanged;
  /// See GridRootOwner::goToBestMatch.
  std::function<bool()> onGoToBestMatch;
  std::function<void()> onToggleView;
  std::function<bool(KeyCombo combo)> onHotKey;

  // GridRootOwner: what the root view asks for.
  void handle(const GridAction& action) override;
  void redraw() override;
  void dragOutside(std::optional<Point> cursor) override;
  void dropOutside(const SpaceWindow& window, SpaceID fromSpace, Point cursor, Point windowTopLeft) override;
  void passKeyboard(bool backwards) override;
  void filterChanged(const std::string& filter) override;
  bool goToBestMatch() override;
  void rename(const DesktopRef& desktop, const Rect& tile) override;
  void closeWindow(const SpaceWindow& window) override;
  void addDesktop() override;
  void removeDesktop(const DesktopRef& desktop) override;
  void toggleView() override;
  void openMenu(Point at, std::vector<GridMenuItem> items) override;
  void flyBack(const GridScene::Window& window, const Rect& from, const Rect& to) override;
  bool hotKey(KeyCombo combo, bool repeated) override;
  void covered() override;

 private:
  class Input;
  enum class Phase { hidden, open, leaving };
  /// Counts openings, closings and switches: what one of them still has to do is done only while it is the latest.
  using Journey = std::uint64_t;

  // What is shown.
  void fit(const ScreenRef& screen);
  void takeDesktops();
  void takeBackgrounds();
  void contentsChanged(GridContents::Change change);
  [[nodiscard]] double pixelsPerPoint() const;
  void startIdleWindowRefresh();
  void stopIdleWindowRefresh();

  // Opening and closing.
  [[nodiscard]] std::optional<Rect> zoomRect(SpaceID space) const { return root.zoomRect(space); }
  [[nodiscard]] std::optional<GridPanelView::Zoom> currentDesktopZoom(GridPanelView::Zoom::Direction direction) const;
  void closeGrid(std::optional<GridPanelView::Zoom> zoom);
  /// Nothing that was begun before counts any more.
  void leave();
  void hide();
  /// Ends what hid the system's own surface while the panel was open; here that is the hold on keyboard and pointer.
  void restoreSystemChrome(bool restoreFocus);
  void showKeyboard(bool keyboard);
  void holdKeyboard();
  void tryKeyboard(std::uint64_t wish, TimePoint until);
  /// Runs `work` in this panel, if it still exists then and its journey goes on.
  [[nodiscard]] std::function<void()> onThisJourney(void (GridPanelController::*work)());

  // Switching.
  /// Null when this panel has no such desktop.
  [[nodiscard]] DesktopRef desktopOf(SpaceID space) const;
  void performSwitch(SpaceID space, std::function<void()> after);
  void switchUnderZoom(const DesktopRef& target, std::function<void()> after);
  void closeGrid(SpaceID zoomingInto);
  void animateGridZoom(const GridPanelView::Zoom& zoom);
  void zoomEnded();
  void revealAfterSwitch();
  void scheduleSwitchCheck(const DesktopRef& target);

  // Moving windows.
  struct Transfer;
  void performMove(WindowID window, SpaceID from, const DesktopRef& to, Point dropInRoot, const Rect& imageRect,
                   GridPanelController* target);
  void transferWindow(Transfer transfer);
  void transferFailed(const Transfer& transfer);

  void setAdding(bool adding);
  void desktopAdded(std::optional<SpaceID> space);
  void desktopRemoved(const std::string& label, Spaces::DesktopRemoval outcome);

  std::shared_ptr<GridContents> contents_;
  std::unique_ptr<Input> input_;
  std::unique_ptr<GridPanelView> view_;
  ScopedConnection contentsChanged_;
  ScreenRef screen_;
  SpacesSnapshot snapshot_;

  Phase phase_ = Phase::hidden;
  Journey journey_ = 0;
  bool exploded_ = false;
  bool adding_ = false;
  bool wasOpen_ = false;
  bool zooming_ = false;
  /// The switch has ended: the panel goes with the end of the zoom.
  bool revealed_ = false;
  bool keyboard_ = false;
  /// Counts the wishes for the keyboard: an older one is not tried any more.
  std::uint64_t keyboardWish_ = 0;
  std::shared_ptr<void> freshness_;
  /// While the user drags.
  std::shared_ptr<void> hold_;
};

}  // namespace tessaspaces
