#include <algorithm>

#include "grid/GridRootState.h"
#include "settings/L10n.h"

namespace tessaspaces {

using State = GridRootState;
using Look = GridScene::Window::Look;

namespace {

ImageRef imageAt(const std::vector<ImageRef>& images, int index) {
  const auto at = static_cast<std::size_t>(index);
  return at < images.size() ? images[at] : nullptr;
}

}  // namespace

GridScene State::scene() const {
  GridScene scene;
  scene.bounds = bounds();
  scene.menuBarInset = layout().menuBarInset();
  scene.header = layout().headerRect();
  if (screen) scene.title = screen->name;
  scene.hint = hint();
  scene.filter = filter.text();
  scene.matches = matches().count;
  scene.keyboard = keyboard;
  scene.exploded = layout().explodedAll();
  const auto under = hovered();
  for (int tile = 0; tile < tileCount(); ++tile) scene.tiles.push_back(sceneTile(tile, under));
  if (const auto tile = dropTile()) scene.tiles[static_cast<std::size_t>(*tile)].dropTarget = true;
  if (const auto rect = plus()) {
    scene.plus = {*rect, under.kind == GridTarget::Kind::plus, selectionShown() && plusSelected, busyAdding};
  }
  if (auto window = drag ? carried() : externalCarried) scene.carried = {std::move(*window)};
  return scene;
}

std::optional<GridScene::Window> State::carried() const {
  const auto at = drag ? find(drag->fromSpace(), drag->window().id) : std::nullopt;
  if (!at) return std::nullopt;
  auto window = plainWindow(*at);
  window.rect = drag->carried();
  return window;
}

GridScene::Tile State::sceneTile(int tile, const GridTarget& under) const {
  const auto index = static_cast<std::size_t>(tile);
  const auto& desktop = *desktopAt(tile);
  GridScene::Tile shown;
  shown.space = desktop.spaceID;
  shown.rect = layout().tileRects()[index];
  shown.content = layout().contentRects()[index];
  if (const auto known = backgrounds.find(desktop.spaceID); known != backgrounds.end()) {
    shown.background = known->second;
  } else {
    shown.background.image = desktop.wallpaper;
  }
  shown.label = desktop.label(tile);
  shown.number = tile + 1;
  shown.fullScreenApplication = desktop.frontmostFullscreenAppName.value_or("");
  shown.windows.reserve(desktop.windows.size());
  for (int i = 0; i < static_cast<int>(desktop.windows.size()); ++i) {
    shown.windows.push_back(plainWindow({tile, i}));
    shown.windows.back().look = lookOf({tile, i}, under);
  }
  shown.current = desktop.isCurrent;
  shown.hovered = (under.kind == GridTarget::Kind::tile || under.kind == GridTarget::Kind::window) &&
                  under.space == desktop.spaceID;
  shown.selected = selectionShown() && !plusSelected && selected == desktop.spaceID;
  if (!filter.isEmpty()) {
    const auto& ranks = matches().ranks[index];
    shown.dimmed = std::none_of(ranks.begin(), ranks.end(), [](const auto& rank) { return rank.has_value(); });
  }
  return shown;
}

GridScene::Window State::plainWindow(GridLayout::WindowHit at) const {
  const auto& desktop = *desktopAt(at.tile);
  const auto& window = windowAt(at);
  return {window.id,
          previewRect(at),
          imageAt(desktop.thumbs, at.window),
          imageAt(desktop.icons, at.window),
          window.title,
          applicationOf(window),
          Look::plain};
}

Look State::lookOf(GridLayout::WindowHit at, const GridTarget& under) const {
  const auto space = desktopAt(at.tile)->spaceID;
  const auto window = windowAt(at).id;
  if (drag && drag->fromSpace() == space && drag->window().id == window) return Look::lifted;
  const auto& found = matches();
  if (bestIsMeant() && found.best && found.best->tile == at.tile && found.best->window == at.window) return Look::best;
  if (under == GridTarget{GridTarget::Kind::window, space, window}) return Look::hovered;
  if (filter.isEmpty()) return Look::plain;
  const auto matched = found.ranks[static_cast<std::size_t>(at.tile)][static_cast<std::size_t>(at.window)];
  return matched ? Look::lit : Look::dimmed;
}

std::optional<int> State::dropTile() const {
  if (drag) return layout().hitTestTile(drag->pointer());
  if (!externalHover) return std::nullopt;
  return layout().hitTestTile(rootPoint(*externalHover));
}

std::string State::hint() const {
  if (drag) return L("grid.hint.drag");
  if (!filter.isEmpty()) {
    const int count = matches().count;
    return count == 0 ? L("grid.hint.noMatch") : L10n::t("grid.hint.matches", count);
  }
  return keyboard ? L("grid.hint.keys") : L("grid.hint.mouse");
}

}  // namespace tessaspaces
