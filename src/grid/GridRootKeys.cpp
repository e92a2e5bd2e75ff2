#include <algorithm>

#include "grid/GridRootState.h"

namespace tessaspaces {

using State = GridRootState;
using Kind = GridTarget::Kind;

// --- Selection

DesktopRef State::selectedDesktop() const {
  if (plusSelected || selected == 0) return nullptr;
  const auto tile = tileOf(selected);
  return tile ? desktopAt(*tile) : nullptr;
}

void State::select(int tile) {
  selected = desktopAt(tile)->spaceID;
  selectedTile = tile;
  plusSelected = false;
}

void State::selectPlus() {
  plusSelected = true;
  selected = 0;
}

void State::forgetSelection() {
  selected = 0;
  plusSelected = false;
  keysUsed = false;
  selectionMoved = false;
}

void State::selectSomething() {
  if (plusSelected || selected != 0 || tileCount() == 0) return;
  int first = 0;
  while (first < tileCount() && !desktopAt(first)->isCurrent) ++first;
  select(first < tileCount() ? first : 0);
}

void State::keepSelection() {
  if (plusSelected && !plus()) {
    plusSelected = false;
    selectedTile = tileCount() - 1;
  } else if (plusSelected) {
    return;
  } else if (selected != 0) {
    if (const auto tile = tileOf(selected)) {
      selectedTile = *tile;
      return;
    }
  } else {
    if (selectionShown()) selectSomething();
    return;
  }
  // What was selected is gone. Someone who works with the keys goes on from where it was.
  selected = 0;
  if (selectionShown() && tileCount() > 0) select(std::clamp(selectedTile, 0, tileCount() - 1));
}

// --- Keys

void State::key(GridKey key) {
  if (drag) {
    if (key == GridKey::escape) cancelDrag();
    return;
  }
  switch (key) {
    case GridKey::left: return move(GridDirection::left);
    case GridKey::right: return move(GridDirection::right);
    case GridKey::up: return move(GridDirection::up);
    case GridKey::down: return move(GridDirection::down);
    case GridKey::home: return moveToTile(0);
    case GridKey::end: return moveToTile(tileCount() - 1);
    case GridKey::enter: return go();
    case GridKey::escape: return escape();
    case GridKey::tab: return owner.passKeyboard(false);
    case GridKey::backTab: return owner.passKeyboard(true);
    case GridKey::backspace: return editFilter(filter.removeLast());
    case GridKey::remove: return removeSomething();
    case GridKey::insert: return add();
    case GridKey::rename: return rename();
    case GridKey::menu: return openMenuAtSelection();
  }
}

void State::useKeys() {
  keysUsed = true;
  pointerLeads = false;
  selectSomething();
}

void State::moveToTile(int tile) {
  useKeys();
  if (tile < 0 || tile >= tileCount()) return;
  selectionMoved = true;
  select(tile);
  owner.redraw();
}

void State::move(GridDirection direction) {
  useKeys();
  selectionMoved = true;
  const int count = tileCount();
  const int last = count - 1;
  const int columns = layout().columns();
  const bool reachesPlus = plus() && direction == GridDirection::right && !plusSelected;
  std::optional<std::int64_t> next;
  if (count == 0 || (reachesPlus && selectedTile == last)) {
    if (plus()) selectPlus();
  } else if (!plusSelected) {
    next = Spaces::neighbor(selectedTile, direction, count, columns);
  } else if (direction == GridDirection::left) {
    next = last;
  } else if (direction == GridDirection::right) {
    next = Spaces::neighbor(last, direction, count, columns);
  } else {
    // As from a desktop that stands where the plus is; beside a full grid it has no row of its own.
    const bool inCell = count % columns != 0;
    next = inCell ? Spaces::neighbor(count, direction, count + 1, columns)
                  : Spaces::neighbor(last, direction, count, columns);
    if (next == count) next.reset();
  }
  if (next) select(static_cast<int>(*next));
  owner.redraw();
}

void State::go() {
  if (bestIsMeant()) {
    if (owner.goToBestMatch()) return;
    const auto& best = matches().best;
    if (best) activate(desktopAt(best->tile)->spaceID, windowAt(*best).id);
    return;
  }
  useKeys();
  if (plusSelected) return add();
  if (selected != 0) owner.handle(GridActions::SwitchSpace{selected});
}

void State::escape() {
  if (filter.isEmpty()) {
    owner.handle(GridActions::Close{});
  } else {
    editFilter(filter.set(""));
  }
}

void State::typed(const std::string& text) {
  if (drag) return;
  if (filter.isEmpty() && text.size() == 1 && text[0] >= '0' && text[0] <= '9') {
    const int tile = text[0] == '0' ? 9 : text[0] - '1';
    if (tile < tileCount()) owner.handle(GridActions::SwitchSpace{desktopAt(tile)->spaceID});
    return;
  }
  editFilter(filter.append(text));
}

void State::editFilter(bool isAnother) {
  if (!isAnother) return;
  useKeys();
  selectionMoved = false;
  filterChanged();
  owner.filterChanged(filter.text());
  owner.redraw();
}

void State::removeSomething() {
  // A pointer that merely rests somewhere while the keys are used means no window.
  const auto under = pointerLeads ? hovered() : GridTarget{};
  if (under.kind == Kind::window) return close(under.space, under.window);
  if (!filter.isEmpty()) {
    const auto& best = matches().best;
    if (best && bestIsMeant()) close(desktopAt(best->tile)->spaceID, windowAt(*best).id);
    return;
  }
  const auto pointed = under.kind == Kind::tile ? tileOf(under.space) : std::nullopt;
  const auto desktop = pointed ? desktopAt(*pointed) : selectionShown() ? selectedDesktop() : nullptr;
  if (desktop && isRemovable(*desktop)) owner.removeDesktop(desktop);
}

void State::add() {
  if (canAdd && !busyAdding) owner.addDesktop();
}

void State::rename() {
  auto desktop = selectionShown() ? selectedDesktop() : nullptr;
  if (!desktop) {
    if (const auto tile = tileOf(hovered().space)) desktop = desktopAt(*tile);
  }
  if (desktop) renameDesktop(desktop->spaceID);
}

}  // namespace tessaspaces
