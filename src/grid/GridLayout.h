#pragma once

#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "base/Geometry.h"
#include "bridges/Desktops.h"

namespace tessaspaces {

/// Where everything is in one panel of the overview grid: a tile for each desktop, and in each tile a preview of each
/// of its windows. Also answers what is under a point.
///
/// All rectangles and points are in the coordinates of the panel's view: points, origin at its top left, y downwards.
/// Main thread only. What is set takes effect with the next `layoutGrid`; the questions about single tiles and windows
/// that take a count or a desktop answer at once.
class GridLayout {
 public:
  struct Tile {
    Rect rect;
    /// Where the wallpaper and the previews are: the tile without its border.
    Rect content;
  };
  struct WindowHit {
    int tile = 0;
    /// Position in the desktop's `windows`.
    int window = 0;
  };
  struct DropTarget {
    DesktopRef desktop;
    Point topLeft;
    /// The content of the tile.
    Rect rect;
  };

  /// Height below the menu bar that belongs to the header.
  static constexpr double headerHeight = 44;
  /// Around the whole grid.
  static constexpr double margin = 18;
  /// Between two tiles.
  static constexpr double gap = 14;
  /// The border that is drawn on a tile.
  static constexpr double tileInset = 2;
  /// No preview is less wide or high: a tiny window can still be taken hold of.
  static constexpr double leastPreview = 6;

  /// The desktops of the panel's display, in the order of the grid.
  void setSnapshot(SpacesSnapshot snapshot) { snapshot_ = std::move(snapshot); }
  /// As set by the user; less than 1 of either leaves no tile.
  void setGrid(int rows, int columns);
  void setBounds(Size bounds) { bounds_ = bounds; }
  /// Height that the system keeps at the top: ScreenGeometry::menuBarInset of the panel's screen.
  void setMenuBarInset(double inset) { menuBarInset_ = inset; }
  /// The windows of each tile are drawn apart where they cover one another.
  void setExplodedAll(bool exploded) { explodedAll_ = exploded; }

  [[nodiscard]] const SpacesSnapshot& snapshot() const { return snapshot_; }
  [[nodiscard]] int rows() const { return rows_; }
  [[nodiscard]] int columns() const { return columns_; }
  [[nodiscard]] bool explodedAll() const { return explodedAll_; }

  /// Recomputes all that follows. Desktops beyond rows x columns get no tile.
  void layoutGrid();

  /// One for each desktop that has a tile, in their order.
  [[nodiscard]] const std::vector<Rect>& tileRects() const { return tileRects_; }
  [[nodiscard]] const std::vector<Rect>& contentRects() const { return contentRects_; }
  /// For each tile one rectangle per window of the desktop, all-zero for a window that is not to be seen; none at all
  /// when the desktop's screen is unknown.
  [[nodiscard]] const std::vector<std::vector<Rect>>& thumbRects() const { return thumbRects_; }
  /// The tiles whose windows were drawn apart. Those where no window covers another stay as they are.
  [[nodiscard]] const std::set<int>& explodedTiles() const { return explodedTiles_; }
  /// The content of each space's tile.
  [[nodiscard]] const std::map<SpaceID, Rect>& zoomRectBySpaceID() const { return zoomRectBySpaceID_; }

  /// The tile at 0-based position `index` among `count` desktops; absent when there is none. A grid that is not full
  /// uses only the rows that it needs, and stands in the middle.
  [[nodiscard]] std::optional<Tile> tileGeometry(int index, int count) const;
  static Rect contentRect(const Rect& tile) { return tile.inset(tileInset, tileInset); }

  /// The windows as they stand on the desktop's screen (the main screen if it has none), scaled down into `content`.
  /// One per window, all-zero for those that have no extent or lie on another screen; empty with no screen.
  static std::vector<Rect> windowRects(const Rect& content, const DesktopInfo& desktop);
  /// The same, drawn apart: see packExploded.
  static std::vector<Rect> explodedWindowRects(const Rect& content, const DesktopInfo& desktop);
  /// Where an icon stands in for a preview.
  static Rect iconRect(const Rect& rect);

  /// The first tile that contains the point.
  [[nodiscard]] std::optional<int> hitTestTile(Point point) const;
  /// The first window, in the order of tiles and then of the desktop's windows, whose preview contains the point.
  [[nodiscard]] std::optional<WindowHit> hitTestWindow(Point point) const;
  /// Where a window that is dragged in from another panel would land: the tile under the cursor. Absent when there
  /// is none. `windowTopLeft` is handed on.
  [[nodiscard]] std::optional<DropTarget> externalDropTarget(Point cursor, Point windowTopLeft) const;

  [[nodiscard]] double menuBarInset() const { return menuBarInset_; }
  /// What is to be drawn anew when the header changes: spans the strips at the top and at the bottom of the view.
  [[nodiscard]] Rect headerRect() const;

 private:
  /// How the tiles of so many desktops stand.
  struct Grid {
    int shown = 0;
    Point origin;
    Size tile;
  };
  [[nodiscard]] Grid grid(int count) const;
  [[nodiscard]] Tile tileAt(const Grid& grid, int index) const;

  SpacesSnapshot snapshot_;
  int rows_ = 0;
  int columns_ = 0;
  Size bounds_;
  double menuBarInset_ = 0;
  bool explodedAll_ = false;

  std::vector<Rect> tileRects_;
  std::vector<Rect> contentRects_;
  std::vector<std::vector<Rect>> thumbRects_;
  std::set<int> explodedTiles_;
  std::map<SpaceID, Rect> zoomRectBySpaceID_;

  /// What the last pass drew apart, so that a tile where nothing changed costs nothing.
  struct Exploded {
    Rect content;
    std::vector<Rect> natural;
    std::vector<Rect> rects;
  };
  std::map<SpaceID, Exploded> exploded_;
};

}  // namespace tessaspaces
