#include <utility>

#include "grid/GridRootState.h"
#include "settings/Log.h"

namespace tessaspaces {

using State = GridRootState;
using Kind = GridTarget::Kind;

GridTarget State::targetAt(Point at) const {
  if (const auto place = plus(); place && place->contains(at)) return {Kind::plus};
  // What the filter found is drawn in front of what it did not.
  auto hit = filter.isEmpty() ? std::nullopt : matchAt(at);
  if (!hit) hit = layout().hitTestWindow(at);
  if (hit) return {Kind::window, desktopAt(hit->tile)->spaceID, windowAt(*hit).id};
  if (const auto tile = layout().hitTestTile(at)) return {Kind::tile, desktopAt(*tile)->spaceID};
  return {};
}

std::optional<GridLayout::WindowHit> State::matchAt(Point at) const {
  const auto tile = layout().hitTestTile(at);
  if (!tile) return std::nullopt;
  const auto& rects = layout().thumbRects()[static_cast<std::size_t>(*tile)];
  const auto& ranks = matches().ranks[static_cast<std::size_t>(*tile)];
  for (std::size_t i = 0; i < rects.size() && i < ranks.size(); ++i) {
    if (ranks[i] && rects[i].contains(at)) return GridLayout::WindowHit{*tile, static_cast<int>(i)};
  }
  return std::nullopt;
}

GridTarget State::hovered() const {
  return pointer && !drag ? targetAt(*pointer) : GridTarget{};
}

void State::pointerMoved(Point at) {
  const auto before = hovered();
  // That it is somewhere when the panel comes up under it says nothing of what the user means.
  if (pointer && *pointer != at) pointerLeads = true;
  pointer = at;
  if (!drag && press && press->button == GridButton::left && press->target.kind == Kind::window &&
      GridDrag::isMeant(press->at, at)) {
    startDrag();
  }
  if (!drag) {
    if (hovered() != before) owner.redraw();
    return;
  }
  drag->moveTo(at);
  const bool outside = !isInside(at);
  const bool wasOutside = drag->exchangeOutside(outside);
  // Whoever is told may end the drag.
  if (outside) {
    owner.dragOutside(screenPoint(at));
  } else if (wasOutside) {
    owner.dragOutside(std::nullopt);
  }
  owner.redraw();
}

void State::pointerLeft() {
  // A drag follows the pointer wherever it goes.
  const bool hovering = hovered().kind != Kind::nothing;
  pointer.reset();
  pointerLeads = false;
  if (hovering) owner.redraw();
}

void State::pressed(GridButton button, Point at) {
  if (drag) {
    if (button == GridButton::right) cancelDrag();
    return;
  }
  // Two buttons at once mean nothing; the same one again was let go where nobody saw it.
  if (press && press->button != button) return press.reset();
  press.reset();
  pointerMoved(at);
  pointerLeads = true;
  if (isInside(at)) press = GridPress{button, at, targetAt(at)};
}

void State::released(GridButton button, Point at) {
  if (drag) {
    if (button != GridButton::left) return;
    drag->moveTo(at);
    drop();
    return;
  }
  if (!press || press->button != button) return;
  const auto target = std::exchange(press, std::nullopt)->target;
  if (!isInside(at) || targetAt(at) != target) return;
  switch (button) {
    case GridButton::left: return click(target);
    case GridButton::middle:
      if (target.kind == Kind::window) close(target.space, target.window);
      return;
    case GridButton::right: return openMenu(at, target);
  }
}

void State::click(const GridTarget& target) {
  switch (target.kind) {
    case Kind::window: return activate(target.space, target.window);
    case Kind::tile: return owner.handle(GridActions::SwitchSpace{target.space});
    case Kind::plus: return add();
    case Kind::nothing: return owner.handle(GridActions::Close{});
  }
}

// --- Drags

void State::startDrag() {
  const auto from = std::exchange(press, std::nullopt);
  const auto at = find(from->target.space, from->target.window);
  if (!at) return;
  drag.emplace(windowAt(*at), from->target.space, previewRect(*at), from->at);
}

void State::drop() {
  const auto at = drag->pointer();
  const auto done = *endDrag();
  pointer = at;
  const auto& window = done.window();
  if (!isInside(at)) {
    owner.dropOutside(window, done.fromSpace(), screenPoint(at), screenPoint(done.topLeft()));
  } else if (const auto tile = layout().hitTestTile(at)) {
    const auto content = layout().contentRects()[static_cast<std::size_t>(*tile)];
    owner.handle(GridActions::MoveWindow{window.id, done.fromSpace(), desktopAt(*tile), done.topLeft(), content});
  } else {
    Log::debug("DROP: window {} released outside any desktop tile — not moved", window.id);
    flyHome(window.id, done.fromSpace(), done.carried());
  }
  owner.redraw();
}

std::optional<GridDrag> State::endDrag() {
  auto ended = std::exchange(drag, std::nullopt);
  press.reset();
  if (ended && ended->isOutside()) owner.dragOutside(std::nullopt);
  return ended;
}

void State::cancelDrag() {
  const auto ended = endDrag();
  if (!ended) return;
  flyHome(ended->window().id, ended->fromSpace(), ended->carried());
  owner.redraw();
}

void State::flyHome(WindowID window, SpaceID space, const Rect& from) {
  const auto at = find(space, window);
  if (!at) return;
  const auto home = previewRect(*at);
  if (home.isEmpty()) return;
  owner.flyBack(plainWindow(*at), from, home);
}

}  // namespace tessaspaces
