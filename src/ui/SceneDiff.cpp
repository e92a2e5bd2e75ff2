#include "ui/SceneDiff.h"

#include <algorithm>
#include <tuple>

namespace tessaspaces {
namespace {

using Tile = GridScene::Tile;

/// All of a tile but its windows. What is named here and what is not drawn makes a tile be drawn once too often at
/// worst; what is missing would leave an old picture on the screen.
auto frameOf(const Tile& tile) {
  return std::tie(tile.space, tile.rect, tile.content, tile.background, tile.label, tile.number,
                  tile.fullScreenApplication, tile.current, tile.selected, tile.hovered, tile.dropTarget, tile.dimmed);
}

auto headerOf(const GridScene& scene) {
  return std::tie(scene.title, scene.filter, scene.matches, scene.keyboard);
}

class Comparison {
 public:
  explicit Comparison(PaintKit& kit) : tiles_(kit), windows_(kit), header_(kit) {}

  SceneChanges changes(const GridScene& before, const GridScene& after) {
    result_.contents.resize(after.tiles.size());
    if (before.bounds != after.bounds || before.menuBarInset != after.menuBarInset || before.header != after.header ||
        before.exploded != after.exploded || !(backdropOf(before).image == backdropOf(after).image)) {
      result_.all = true;
      for (std::size_t i = 0; i < after.tiles.size(); ++i) result_.contents[i] = tiles_.contentRect(after.tiles[i]);
      return result_;
    }
    if (headerOf(before) != headerOf(after)) result_.region += header_.bounds(after);
    const QRect hintBefore = header_.hintRect(before);
    const QRect hintAfter = header_.hintRect(after);
    if (hintBefore != hintAfter || before.hint != after.hint) {
      result_.region += hintBefore;
      result_.region += hintAfter;
    }
    if (!(before.plus == after.plus)) {
      if (before.plus) result_.region += tiles_.bounds(*before.plus);
      if (after.plus) result_.region += tiles_.bounds(*after.plus);
    }
    if (!(before.carried == after.carried)) {
      if (before.carried) result_.region += windows_.carriedBounds(before.carried->window.rect);
      if (after.carried) result_.region += windows_.carriedBounds(after.carried->window.rect);
    }
    for (std::size_t i = 0; i < std::max(before.tiles.size(), after.tiles.size()); ++i) {
      if (i >= after.tiles.size()) {
        result_.region += tiles_.bounds(before.tiles[i]);
      } else if (i >= before.tiles.size()) {
        addTile(i, after.tiles[i]);
      } else {
        compare(i, before.tiles[i], after.tiles[i], after.exploded);
      }
    }
    return result_;
  }

 private:
  void addTile(std::size_t index, const Tile& tile) {
    result_.region += tiles_.bounds(tile);
    result_.contents[index] = tiles_.contentRect(tile);
  }

  void compare(std::size_t index, const Tile& before, const Tile& after, bool exploded) {
    if (frameOf(before) != frameOf(after)) {
      result_.region += tiles_.bounds(before);
      addTile(index, after);
      return;
    }
    QRect changed;
    const QRect content = tiles_.contentRect(after);
    if (before.windows.size() != after.windows.size()) changed = content;
    for (std::size_t i = 0; changed != content && i < after.windows.size(); ++i) {
      const auto& old = before.windows[i];
      const auto& now = after.windows[i];
      if (old == now) continue;
      changed |= windows_.bounds(old) | windows_.bounds(now);
      // Its name appears, or goes, somewhere near.
      if (exploded) changed = content;
    }
    changed &= content;
    if (changed.isEmpty()) return;
    result_.region += changed;
    result_.contents[index] = changed;
  }

  TilePainter tiles_;
  WindowPainter windows_;
  HeaderPainter header_;
  SceneChanges result_;
};

}  // namespace

const TileBackground& backdropOf(const GridScene& scene) {
  static const TileBackground none;
  for (const auto& tile : scene.tiles) {
    if (tile.current) return tile.background;
  }
  return scene.tiles.empty() ? none : scene.tiles.front().background;
}

SceneChanges changesBetween(const GridScene& before, const GridScene& after, PaintKit& kit) {
  return Comparison(kit).changes(before, after);
}

}  // namespace tessaspaces
