#include "grid/GridRootView.h"

#include <algorithm>
#include <utility>

#include "grid/GridRootState.h"
#include "grid/PlusPlace.h"
#include "grid/ScreenGeometry.h"

namespace tessaspaces {
namespace {

/// Windows that were drawn apart may touch: each is drawn a little smaller than its room, in its own proportions.
Rect withAir(const Rect& room) {
  constexpr double air = 5;
  const double scale = std::max(0.8, 1 - air / std::max({room.width, room.height, 1.0}));
  const Size size{room.width * scale, room.height * scale};
  return {room.center().x - size.width / 2, room.center().y - size.height / 2, size.width, size.height};
}

}  // namespace

using State = GridRootState;

// --- What is shown

void State::changed() {
  stale_ = true;
  matches_.reset();
}

void State::setScreen(const ScreenRef& shownOn, int rows, int columns) {
  screen = shownOn;
  grid_.setGrid(rows, columns);
  grid_.setBounds(bounds());
  grid_.setMenuBarInset(ScreenGeometry::menuBarInset(screen));
  changed();
  keepSelection();
  keepDrag();
}

void State::setSnapshot(SpacesSnapshot snapshot) {
  grid_.setSnapshot(std::move(snapshot));
  changed();
  keepSelection();
  keepDrag();
}

void State::keepDrag() {
  if (!drag) return;
  if (const auto still = find(drag->fromSpace(), drag->window().id)) {
    drag->update(windowAt(*still));
  } else {
    endDrag();
  }
}

void State::setExplodedAll(bool exploded) {
  if (exploded == grid_.explodedAll()) return;
  grid_.setExplodedAll(exploded);
  changed();
}

const GridLayout& State::layout() const {
  if (std::exchange(stale_, false)) grid_.layoutGrid();
  return grid_;
}

const GridMatches& State::matches() const {
  if (matches_) return *matches_;
  auto& found = matches_.emplace();
  if (filter.isEmpty()) return found;
  std::optional<int> bestRank;
  for (int tile = 0; tile < tileCount(); ++tile) {
    const auto& windows = desktopAt(tile)->windows;
    auto& ranks = found.ranks.emplace_back(windows.size());
    for (int i = 0; i < static_cast<int>(windows.size()); ++i) {
      // A window on another screen is another panel's to find.
      if (previewRect({tile, i}).isEmpty()) continue;
      const auto& window = windows[static_cast<std::size_t>(i)];
      const auto rank = filter.rank(window.title, applicationOf(window));
      if (!rank) continue;
      ranks[static_cast<std::size_t>(i)] = rank;
      ++found.count;
      // A window that is on several desktops is to be had on the one that is shown.
      const bool same = bestRank == rank && windowAt(*found.best).id == window.id && desktopAt(tile)->isCurrent;
      if (bestRank && *bestRank <= *rank && !same) continue;
      bestRank = rank;
      found.best = {tile, i};
    }
  }
  return found;
}

Size State::bounds() const {
  return screen ? Size{screen->frame.width, screen->frame.height} : Size{};
}

bool State::isInside(Point at) const {
  const auto size = bounds();
  return Rect{0, 0, size.width, size.height}.contains(at);
}

Point State::screenPoint(Point inRoot) const {
  const auto frame = screen ? screen->frame : Rect{};
  return {frame.x + inRoot.x, frame.maxY() - inRoot.y};
}

Point State::rootPoint(Point onScreen) const {
  const auto frame = screen ? screen->frame : Rect{};
  return {onScreen.x - frame.x, frame.maxY() - onScreen.y};
}

const DesktopRef& State::desktopAt(int tile) const {
  return layout().snapshot().desktops[static_cast<std::size_t>(tile)];
}

std::optional<int> State::tileOf(SpaceID space) const {
  for (int tile = 0; tile < tileCount(); ++tile) {
    if (desktopAt(tile)->spaceID == space) return tile;
  }
  return std::nullopt;
}

std::optional<GridLayout::WindowHit> State::find(SpaceID space, WindowID window) const {
  const auto tile = tileOf(space);
  if (!tile) return std::nullopt;
  const auto& windows = desktopAt(*tile)->windows;
  const auto found =
      std::find_if(windows.begin(), windows.end(), [&](const SpaceWindow& each) { return each.id == window; });
  if (found == windows.end()) return std::nullopt;
  return GridLayout::WindowHit{*tile, static_cast<int>(found - windows.begin())};
}

const SpaceWindow& State::windowAt(GridLayout::WindowHit at) const {
  return desktopAt(at.tile)->windows[static_cast<std::size_t>(at.window)];
}

Rect State::previewRect(GridLayout::WindowHit at) const {
  const auto& rects = layout().thumbRects()[static_cast<std::size_t>(at.tile)];
  const auto index = static_cast<std::size_t>(at.window);
  // None at all where the desktop's screen is unknown.
  if (index >= rects.size()) return {};
  return layout().explodedTiles().contains(at.tile) ? withAir(rects[index]) : rects[index];
}

std::string State::applicationOf(const SpaceWindow& window) const {
  const auto known = applicationNames.find(window.pid);
  return known == applicationNames.end() ? std::string() : known->second;
}

std::optional<Rect> State::plus() const {
  if (!canAdd || !screen) return std::nullopt;
  return plusPlace(layout(), bounds());
}

// --- The view

GridRootView::GridRootView(GridRootOwner& owner) : state_(std::make_unique<State>(owner)) {}
GridRootView::~GridRootView() = default;

void GridRootView::setSnapshot(SpacesSnapshot snapshot) {
  state_->setSnapshot(std::move(snapshot));
}

void GridRootView::setScreen(const ScreenRef& screen, int rows, int columns) {
  state_->setScreen(screen, rows, columns);
}

void GridRootView::setExplodedAll(bool exploded) {
  state_->setExplodedAll(exploded);
}

void GridRootView::setBackgrounds(std::map<SpaceID, TileBackground> backgrounds) {
  state_->backgrounds = std::move(backgrounds);
}

void GridRootView::setApplicationNames(std::map<std::int32_t, std::string> names) {
  state_->applicationNames = std::move(names);
  state_->filterChanged();
}

void GridRootView::setKeyboard(bool keyboard) {
  state_->keyboard = keyboard;
  // The selection is remembered for when the keyboard comes back, and not shown until then.
  if (keyboard) {
    state_->selectSomething();
  } else {
    state_->keysUsed = false;
  }
}

void GridRootView::setFilter(const std::string& filter) {
  if (!state_->filter.set(filter)) return;
  state_->selectionMoved = false;
  state_->filterChanged();
}

void GridRootView::setBusyAdding(bool busy) {
  state_->busyAdding = busy;
}

void GridRootView::setCanAdd(bool canAdd) {
  state_->canAdd = canAdd;
  state_->keepSelection();
}

void GridRootView::reset() {
  auto& state = *state_;
  state.endDrag();
  state.press.reset();
  state.pointer.reset();
  state.externalHover.reset();
  state.externalCarried.reset();
  state.pointerLeads = false;
  state.keyboard = false;
  state.forgetSelection();
  setFilter("");
}

const GridLayout& GridRootView::layout() const {
  return state_->layout();
}

GridScene GridRootView::scene() const {
  return state_->scene();
}

bool GridRootView::isDragging() const {
  return state_->drag.has_value();
}

std::optional<Rect> GridRootView::zoomRect(SpaceID space) const {
  const auto& rects = layout().zoomRectBySpaceID();
  const auto found = rects.find(space);
  if (found == rects.end()) return std::nullopt;
  return found->second;
}

DesktopRef GridRootView::selectedDesktop() const {
  return state_->selectedDesktop();
}

std::optional<GridRootView::Match> GridRootView::bestMatch() const {
  const auto& matches = state_->matches();
  if (!matches.best) return std::nullopt;
  const auto [tile, window] = *matches.best;
  const auto rank = matches.ranks[static_cast<std::size_t>(tile)][static_cast<std::size_t>(window)];
  return Match{state_->desktopAt(tile), state_->windowAt(*matches.best), rank.value_or(0)};
}

Point GridRootView::screenPoint(Point inRoot) const {
  return state_->screenPoint(inRoot);
}

Point GridRootView::rootPoint(Point onScreen) const {
  return state_->rootPoint(onScreen);
}

void GridRootView::setExternalHover(std::optional<Point> at) {
  const auto before = state_->dropTile();
  state_->externalHover = at;
  if (state_->dropTile() != before) state_->owner.redraw();
}

std::optional<GridScene::Window> GridRootView::carriedIn(const GridRootView& other) const {
  auto window = state_->carried();
  if (!window) return std::nullopt;
  const Point corner = other.rootPoint(screenPoint({window->rect.x, window->rect.y}));
  window->rect = {corner.x, corner.y, window->rect.width, window->rect.height};
  return window;
}

void GridRootView::showCarried(std::optional<GridScene::Window> window) {
  if (window == state_->externalCarried) return;
  state_->externalCarried = std::move(window);
  state_->owner.redraw();
}

std::optional<GridLayout::DropTarget> GridRootView::externalDropTarget(Point cursor, Point windowTopLeft) const {
  return layout().externalDropTarget(rootPoint(cursor), rootPoint(windowTopLeft));
}

void GridRootView::cancelDrag() {
  state_->press.reset();
  if (state_->endDrag()) state_->owner.redraw();
}

void GridRootView::returnPreview(WindowID window, SpaceID space, Point windowTopLeft) {
  const auto found = state_->find(space, window);
  if (!found) return;
  const auto corner = rootPoint(windowTopLeft);
  const auto size = state_->previewRect(*found);
  state_->flyHome(window, space, {corner.x, corner.y, size.width, size.height});
}

void GridRootView::pointerMoved(Point at) {
  state_->pointerMoved(at);
}

void GridRootView::pointerLeft() {
  state_->pointerLeft();
}

void GridRootView::pressed(GridButton button, Point at) {
  state_->pressed(button, at);
}

void GridRootView::released(GridButton button, Point at) {
  state_->released(button, at);
}

void GridRootView::key(GridKey key) {
  state_->key(key);
}

void GridRootView::typed(const std::string& text) {
  state_->typed(text);
}

bool GridRootView::hotKey(KeyCombo combo, bool repeated) {
  return state_->owner.hotKey(combo, repeated);
}

void GridRootView::covered() {
  cancelDrag();
  state_->owner.covered();
}

}  // namespace tessaspaces
