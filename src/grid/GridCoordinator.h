#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "base/KeyCombo.h"
#include "base/Signal.h"
#include "grid/GridPanelController.h"
#include "platform/Screens.h"

namespace tessaspaces {

/// Owns the panels of the overview, one for each distinct display, and is the one way to open, close and change it.
/// Decides which screens get a panel and which panel the keyboard, and leads what goes from one panel to another. One
/// for the process, on the main thread, while a platform is set.
class GridCoordinator {
 public:
  /// Makes the main display's panel, hidden. `backgrounds` outlives the coordinator.
  GridCoordinator(MakeGridPanelView makeView, TileBackgrounds& backgrounds);
  ~GridCoordinator();
  GridCoordinator(const GridCoordinator&) = delete;
  GridCoordinator& operator=(const GridCoordinator&) = delete;

  /// Makes all panels, hidden, and asks for previews, icons, names and backgrounds ahead, so that the first opening is
  /// as fast as the later ones. From then on windows that come to the screen have a preview. Again whenever the
  /// displays have changed, by itself.
  void prepare();

  /// Opens the grid on every distinct display, with the keyboard on the one that the screen belongs to; null, or one
  /// that is not there: on the first. Nothing with no displays. What is open takes in what is new.
  void show(const ScreenRef& focusedOn);
  [[nodiscard]] bool isVisible() const;
  /// A panel covers its screen, be it on its way out.
  [[nodiscard]] bool isOnScreen() const;
  /// At once, panels on their way out included.
  void close();
  void closeAnimated();
  /// Each panel that is visible, between the standard and the exploded view.
  void toggleGridView();
  /// Takes in changed settings.
  void reload();

  /// A combination of keys was pressed that may be one of the program's hot keys, which the system does not deliver
  /// while a panel has the keyboard. To answer whether it was one. May be empty.
  std::function<bool(KeyCombo)> hotKeyPressed;

  /// The visible panels, in the order of their screens.
  [[nodiscard]] std::vector<std::shared_ptr<GridPanelController>> visiblePanels() const;
  /// How many panels an opening has.
  [[nodiscard]] static std::size_t panelCount() { return panelScreens().size(); }

 private:
  using Panel = std::shared_ptr<GridPanelController>;

  /// The distinct screens; of two that mirror each other, neither built in, the preferred one or else the first.
  static std::vector<ScreenRef> panelScreens(const ScreenRef& preferred = nullptr);
  static std::map<DisplayID, Rect> currentDisplayLayout();
  /// Null for a screen without a display number.
  Panel controller(const ScreenRef& screen);
  void connect(GridPanelController& panel);
  void displaysChanged();
  void dropAcrossDisplays(GridPanelController& source, const SpaceWindow& window, SpaceID space, Point cursor,
                          Point windowTopLeft);
  void dragAcrossDisplays(const GridPanelController& source, std::optional<Point> cursor);
  void passKeyboard(GridPanelController& from, bool backwards);
  bool goToBestMatch();
  /// Asks for previews as large as the panels show them.
  void fitPreviews();

  /// What callbacks hold weakly.
  std::shared_ptr<GridCoordinator> self_;
  MakeGridPanelView makeView_;
  std::shared_ptr<GridContents> contents_;
  std::map<DisplayID, Panel> controllers_;
  /// Frames of the screens (origin at the bottom left of the first one) at the last change that counted.
  std::map<DisplayID, Rect> displayLayout_;
  bool prepared_ = false;
  ScopedConnection screensChanged_;
};

}  // namespace tessaspaces
