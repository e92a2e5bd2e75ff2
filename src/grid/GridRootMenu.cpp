#include <algorithm>
#include <utility>

#include "grid/GridRootState.h"
#include "grid/ScreenGeometry.h"
#include "settings/L10n.h"

namespace tessaspaces {

using State = GridRootState;
using Kind = GridTarget::Kind;

// --- What the menus and the mouse alike can do

void State::activate(SpaceID space, WindowID window) {
  if (const auto at = find(space, window)) owner.handle(GridActions::SwitchSpaceAndActivate{space, windowAt(*at)});
}

void State::close(SpaceID space, WindowID window) {
  if (const auto at = find(space, window)) owner.closeWindow(SpaceWindow(windowAt(*at)));
}

void State::moveTo(SpaceID from, WindowID window, SpaceID to) {
  const auto at = find(from, window);
  const auto target = tileOf(to);
  if (!at || !target) return;
  const auto& desktop = desktopAt(*target);
  const auto content = layout().contentRects()[static_cast<std::size_t>(*target)];
  // Dropped where it would be seen if it had been there before.
  const auto& shownOn = desktop->screen ? desktop->screen : screen;
  const auto frame = shownOn ? ScreenGeometry::flipped(shownOn->frame) : Rect{};
  const auto& bounds = windowAt(*at).bounds;
  Point corner{content.x, content.y};
  if (!frame.isEmpty()) {
    corner.x += (bounds.x - frame.x) / frame.width * content.width;
    corner.y += (bounds.y - frame.y) / frame.height * content.height;
  }
  owner.handle(GridActions::MoveWindow{window, from, desktop, corner, content});
}

void State::renameDesktop(SpaceID space) {
  const auto tile = tileOf(space);
  if (tile) owner.rename(desktopAt(*tile), layout().tileRects()[static_cast<std::size_t>(*tile)]);
}

void State::removeDesktop(SpaceID space) {
  const auto tile = tileOf(space);
  if (tile && isRemovable(*desktopAt(*tile))) owner.removeDesktop(desktopAt(*tile));
}

bool State::isRemovable(const DesktopInfo& desktop) const {
  const auto& all = layout().snapshot().desktops;
  if (all.size() < 2) return false;
  // A window that is on every desktop stays where it is.
  const auto isElsewhere = [&](const SpaceWindow& window) {
    return std::any_of(all.begin(), all.end(), [&](const DesktopRef& other) {
      return other->spaceID != desktop.spaceID &&
             std::any_of(other->windows.begin(), other->windows.end(),
                         [&](const SpaceWindow& each) { return each.id == window.id; });
    });
  };
  return std::all_of(desktop.windows.begin(), desktop.windows.end(), isElsewhere);
}

// --- Menus

void State::openMenu(Point at, const GridTarget& target) {
  switch (target.kind) {
    case Kind::window: return owner.openMenu(at, windowMenu(target));
    case Kind::tile: return owner.openMenu(at, tileMenu(target));
    case Kind::plus:
    case Kind::nothing: return owner.openMenu(at, backgroundMenu());
  }
}

void State::openMenuAtSelection() {
  if (bestIsMeant() && matches().best) {
    const auto best = *matches().best;
    return openMenu(previewRect(best).center(), {Kind::window, desktopAt(best.tile)->spaceID, windowAt(best).id});
  }
  useKeys();
  if (const auto desktop = selectedDesktop()) {
    const auto tile = layout().contentRects()[static_cast<std::size_t>(selectedTile)];
    return openMenu(tile.center(), {Kind::tile, desktop->spaceID});
  }
  const auto size = bounds();
  openMenu({size.width / 2, size.height / 2}, {});
}

GridMenuItem State::item(std::string_view key, std::function<void()> action) const {
  // The view may be gone when the user has chosen.
  return {L(key), true, false, [still = std::weak_ptr(alive), action = std::move(action)] {
            if (!still.expired()) action();
          }};
}

std::vector<GridMenuItem> State::windowMenu(const GridTarget& target) {
  const auto [kind, space, window] = target;
  std::vector<GridMenuItem> items;
  items.push_back(item("grid.menu.goThere", [this, space = space, window = window] { activate(space, window); }));
  items.push_back(item("grid.menu.closeWindow", [this, space = space, window = window] { close(space, window); }));
  bool separated = false;
  for (int tile = 0; tile < tileCount(); ++tile) {
    const auto& desktop = *desktopAt(tile);
    if (desktop.spaceID == space) continue;
    if (!std::exchange(separated, true)) items.emplace_back();
    auto move = item("grid.menu.moveTo",
                     [this, space = space, window = window, to = desktop.spaceID] { moveTo(space, window, to); });
    move.title = L10n::format(move.title, {desktop.label(tile)});
    items.push_back(std::move(move));
  }
  return items;
}

std::vector<GridMenuItem> State::tileMenu(const GridTarget& target) {
  const auto space = target.space;
  std::vector<GridMenuItem> items;
  items.push_back(item("grid.menu.goThere", [this, space] {
    if (tileOf(space)) owner.handle(GridActions::SwitchSpace{space});
  }));
  items.push_back(item("grid.menu.rename", [this, space] { renameDesktop(space); }));
  items.push_back(item("grid.menu.removeDesktop", [this, space] { removeDesktop(space); }));
  const auto tile = tileOf(space);
  items.back().enabled = tile && isRemovable(*desktopAt(*tile));
  return items;
}

std::vector<GridMenuItem> State::backgroundMenu() {
  std::vector<GridMenuItem> items;
  items.push_back(item("grid.menu.explodedView", [this] { owner.toggleView(); }));
  items.back().checked = layout().explodedAll();
  items.push_back(item("grid.menu.addDesktop", [this] { add(); }));
  items.back().enabled = canAdd && !busyAdding;
  items.emplace_back();
  items.push_back(item("grid.menu.close", [this] { owner.handle(GridActions::Close{}); }));
  return items;
}

}  // namespace tessaspaces
