#include "grid/GridLayout.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "grid/ExplodedPacking.h"
#include "grid/Overlap.h"
#include "grid/ScreenGeometry.h"
#include "platform/Platform.h"

namespace tessaspaces {
namespace {

/// Part of the tile that the windows may cover when they are drawn apart; the rest is air.
constexpr double coverage = 0.85;
/// A packing that stays below this part of the scale it was allowed is tried again with less to aim at.
constexpr double goodEnough = 0.5;
constexpr double retryScale = 0.8;
constexpr int mostAttempts = 6;

constexpr double topStrip = 60;
constexpr double bottomStrip = 40;
constexpr double iconPart = 0.6;

template <class Rects>
std::optional<int> firstContaining(const Rects& rects, Point point) {
  const auto found = std::find_if(rects.begin(), rects.end(), [&](const Rect& rect) { return rect.contains(point); });
  if (found == rects.end()) return std::nullopt;
  return static_cast<int>(found - rects.begin());
}

std::vector<Rect> drawnApart(const Rect& content, std::vector<Rect> natural) {
  double total = 0;
  for (const auto& rect : natural) total += rect.width * rect.height;
  const double budget = content.width * content.height * coverage;
  double preScale = total > 0 && budget < total ? std::sqrt(budget / total) : 1.0;
  std::optional<Packing> best;
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    auto packing = packExploded(content, natural, preScale);
    const bool good = packing.score >= goodEnough * preScale;
    if (!best || packing.score > best->score) best = std::move(packing);
    if (good) break;
    preScale *= retryScale;
  }
  return best ? std::move(best->rects) : std::move(natural);
}

}  // namespace

void GridLayout::setGrid(int rows, int columns) {
  rows_ = rows;
  columns_ = columns;
}

void GridLayout::layoutGrid() {
  tileRects_.clear();
  contentRects_.clear();
  thumbRects_.clear();
  explodedTiles_.clear();
  zoomRectBySpaceID_.clear();
  const auto before = std::exchange(exploded_, {});

  const auto placed = grid(static_cast<int>(snapshot_.desktops.size()));
  for (int i = 0; i < placed.shown; ++i) {
    const auto& desktop = *snapshot_.desktops[static_cast<std::size_t>(i)];
    const auto tile = tileAt(placed, i);
    tileRects_.push_back(tile.rect);
    contentRects_.push_back(tile.content);
    zoomRectBySpaceID_[desktop.spaceID] = tile.content;
    auto rects = windowRects(tile.content, desktop);
    if (explodedAll_ && hasOverlap(rects)) {
      explodedTiles_.insert(i);
      auto& exploded = exploded_[desktop.spaceID];
      const auto known = before.find(desktop.spaceID);
      if (known != before.end() && known->second.content == tile.content && known->second.natural == rects) {
        exploded = known->second;
      } else {
        exploded = {tile.content, rects, drawnApart(tile.content, rects)};
      }
      rects = exploded.rects;
    }
    thumbRects_.push_back(std::move(rects));
  }
}

GridLayout::Grid GridLayout::grid(int count) const {
  Grid grid;
  if (rows_ < 1 || columns_ < 1) return grid;
  // Divided rather than multiplied: rows x columns could be more than an int holds.
  grid.shown = count / columns_ < rows_ ? std::max(0, count) : rows_ * columns_;
  const int usedRows = std::max(1, (grid.shown - 1) / columns_ + 1);
  const double top = menuBarInset_ + headerHeight;
  const double width = bounds_.width - 2 * margin;
  const double height = bounds_.height - top - 2 * margin;
  // The aspect is always that of the main screen: tiles look alike on all panels.
  grid.tile = ScreenGeometry::tileSize(width, height, columns_, usedRows, gap);
  grid.origin = {(width - (grid.tile.width * columns_ + gap * (columns_ - 1))) / 2 + margin,
                 top + margin + (height - (grid.tile.height * usedRows + gap * (usedRows - 1))) / 2};
  return grid;
}

GridLayout::Tile GridLayout::tileAt(const Grid& grid, int index) const {
  const int column = index % columns_;
  const int row = index / columns_;
  const Rect rect{grid.origin.x + column * (grid.tile.width + gap), grid.origin.y + row * (grid.tile.height + gap),
                  grid.tile.width, grid.tile.height};
  return {rect, contentRect(rect)};
}

std::optional<GridLayout::Tile> GridLayout::tileGeometry(int index, int count) const {
  const auto placed = grid(count);
  if (index < 0 || index >= placed.shown) return std::nullopt;
  return tileAt(placed, index);
}

std::vector<Rect> GridLayout::windowRects(const Rect& content, const DesktopInfo& desktop) {
  if (desktop.windows.empty()) return {};
  const auto shownOn = desktop.screen ? desktop.screen : platform().screens().mainScreen();
  if (!shownOn) return {};
  const auto screen = ScreenGeometry::flipped(shownOn->frame);
  if (screen.width <= 1 || screen.height <= 1) return {};
  const double across = content.width / screen.width;
  const double down = content.height / screen.height;
  std::vector<Rect> rects;
  rects.reserve(desktop.windows.size());
  for (const auto& window : desktop.windows) {
    const auto& frame = window.bounds;
    if (frame.isEmpty()) {
      rects.emplace_back();
      continue;
    }
    const Rect preview{content.x + (frame.x - screen.x) * across, content.y + (frame.y - screen.y) * down,
                       std::max(leastPreview, frame.width * across), std::max(leastPreview, frame.height * down)};
    rects.push_back(preview.intersection(content));
  }
  return rects;
}

std::vector<Rect> GridLayout::explodedWindowRects(const Rect& content, const DesktopInfo& desktop) {
  return drawnApart(content, windowRects(content, desktop));
}

Rect GridLayout::iconRect(const Rect& rect) {
  const double side = iconPart * std::min(rect.width, rect.height);
  const auto center = rect.center();
  return {center.x - side / 2, center.y - side / 2, side, side};
}

std::optional<int> GridLayout::hitTestTile(Point point) const {
  return firstContaining(tileRects_, point);
}

std::optional<GridLayout::WindowHit> GridLayout::hitTestWindow(Point point) const {
  for (std::size_t tile = 0; tile < thumbRects_.size(); ++tile) {
    if (const auto window = firstContaining(thumbRects_[tile], point)) {
      return WindowHit{static_cast<int>(tile), *window};
    }
  }
  return std::nullopt;
}

std::optional<GridLayout::DropTarget> GridLayout::externalDropTarget(Point cursor, Point windowTopLeft) const {
  const auto tile = hitTestTile(cursor);
  if (!tile) return std::nullopt;
  const auto index = static_cast<std::size_t>(*tile);
  // A new snapshot may be set and not laid out yet.
  if (index >= snapshot_.desktops.size()) return std::nullopt;
  return DropTarget{snapshot_.desktops[index], windowTopLeft, contentRects_[index]};
}

Rect GridLayout::headerRect() const {
  const double top = std::min(0.0, bounds_.height - bottomStrip);
  const double bottom = std::max(menuBarInset_ + topStrip, bounds_.height);
  return {0, top, bounds_.width, bottom - top};
}

}  // namespace tessaspaces
