// Windows that are dropped on a tile: shown there at once, then moved.

#include <algorithm>
#include <utility>

#include "grid/GridPanelController.h"
#include "grid/GridPlacement.h"
#include "grid/ScreenGeometry.h"
#include "model/WindowMoves.h"
#include "platform/Platform.h"
#include "settings/L10n.h"
#include "settings/Log.h"

namespace tessaspaces {

/// A move that is under way.
struct GridPanelController::Transfer {
  SpaceWindow window;
  SpaceID from = 0;
  SpaceID to = 0;
  /// Where it is to stand there; absent: as it stands.
  std::optional<Rect> frame;
  /// Where the preview was let go: its top left, on the screen.
  Point dropped;
  ExpectedMoves::Number expected = 0;
  /// It goes to another desktop, and does not only get another place.
  bool leaves = false;
};

namespace {

const SpaceWindow* find(const DesktopInfo& desktop, WindowID id) {
  const auto found = std::find_if(desktop.windows.begin(), desktop.windows.end(),
                                  [&](const SpaceWindow& window) { return window.id == id; });
  return found == desktop.windows.end() ? nullptr : &*found;
}

/// Whether the tile shows where its windows stand, so that a point in it is a place on the screen.
bool showsPlaces(const GridLayout& layout, SpaceID space) {
  const auto& desktops = layout.snapshot().desktops;
  return std::none_of(layout.explodedTiles().begin(), layout.explodedTiles().end(), [&](int tile) {
    const auto index = static_cast<std::size_t>(tile);
    return index < desktops.size() && desktops[index]->spaceID == space;
  });
}

bool place(const SpaceWindow& window, const Rect& frame) {
  const auto found = platform().accessibility().find(window.pid, window.id);
  return found && found->place(frame);
}

}  // namespace

void GridPanelController::moveWindow(WindowID window, SpaceID from, const DesktopRef& to, Point dropInRoot,
                                     const Rect& imageRect, GridPanelController& target) {
  performMove(window, from, to, dropInRoot, imageRect, &target);
}

void GridPanelController::performMove(WindowID id, SpaceID from, const DesktopRef& to, Point dropInRoot,
                                      const Rect& imageRect, GridPanelController* target) {
  auto& shownOn = target != nullptr ? *target : *this;
  const auto source = desktopOf(from);
  const auto* window = source ? find(*source, id) : nullptr;
  if (window == nullptr || !to || !to->screen) {
    Log::debug("DROP: window {} or its desktop is gone — not moved", id);
    if (window != nullptr) root.returnPreview(id, from, shownOn.root.screenPoint(dropInRoot));
    return;
  }
  Transfer transfer{*window, from, to->spaceID, std::nullopt, shownOn.root.screenPoint(dropInRoot)};
  if (from != to->spaceID && find(*to, id) != nullptr) {
    Log::debug("DROP: window {} is on both desktops — not moved", id);
    root.returnPreview(id, from, transfer.dropped);
    return;
  }
  if (showsPlaces(shownOn.root.layout(), to->spaceID)) {
    const GridPlacement placement{window->bounds,
                                  dropInRoot,
                                  imageRect,
                                  ScreenGeometry::flipped(to->screen->frame),
                                  ScreenGeometry::flipped(to->screen->visibleFrame),
                                  &shownOn != this};
    transfer.frame = placement.frame();
  }
  // A window that is still on its way here has to arrive before it can be given a place.
  transfer.leaves = from != to->spaceID || contents_->isLeaving(id);
  if (!transfer.leaves && !transfer.frame) {
    root.returnPreview(id, from, transfer.dropped);
    return;
  }
  auto moved = transfer.window;
  if (transfer.frame) moved.bounds = *transfer.frame;
  transfer.expected = contents_->expectMove(moved, to->spaceID, transfer.leaves);
  transferWindow(std::move(transfer));
}

void GridPanelController::transferWindow(Transfer transfer) {
  auto& dispatch = platform().dispatch();
  dispatch.background([weak = weak_from_this(), contents = std::weak_ptr(contents_), transfer = std::move(transfer)] {
    const auto& window = transfer.window;
    auto result = Spaces::MoveResult::moved;
    if (transfer.leaves) result = Spaces::tryMoveOtherAppWindow(window.id, transfer.to);
    if (result == Spaces::MoveResult::moved && transfer.frame && !place(window, *transfer.frame)) {
      Log::warning("MOVE: window {} could not be placed", window.id);
      if (!transfer.leaves) result = Spaces::MoveResult::failed;
    }
    platform().dispatch().async([weak, contents, transfer, result] {
      if (const auto known = contents.lock(); known && result != Spaces::MoveResult::failed) {
        known->moveArrived(transfer.window.id, transfer.expected);
      }
      if (result != Spaces::MoveResult::failed) return;
      if (const auto self = weak.lock()) {
        self->transferFailed(transfer);
      } else if (const auto known = contents.lock()) {
        known->moveFailed(transfer.window.id, transfer.expected);
      }
    });
  });
}

void GridPanelController::transferFailed(const Transfer& transfer) {
  // The user has dropped it somewhere else meanwhile: that is what counts.
  if (!contents_->moveFailed(transfer.window.id, transfer.expected)) return;
  // Where it really is: an earlier drop may have been on its way when this one began.
  const auto stands = [&](const DesktopRef& desktop) {
    return desktop && find(*desktop, transfer.window.id) != nullptr;
  };
  auto source = desktopOf(transfer.from);
  if (!stands(source)) {
    const auto found = std::find_if(snapshot_.desktops.begin(), snapshot_.desktops.end(), stands);
    source = found == snapshot_.desktops.end() ? nullptr : *found;
  }
  if (isVisible() && !source) {
    Log::debug("MOVE: window {} is gone — not moved", transfer.window.id);
    return;
  }
  Log::warning("MOVE: window {} stays on space {}: it could not be moved to space {}", transfer.window.id,
               transfer.from, transfer.to);
  if (!isVisible()) return;
  root.returnPreview(transfer.window.id, source->spaceID, transfer.dropped);
  const auto& title = transfer.window.title;
  view_->alert(L10n::t("grid.alert.moveFailed.title"), title.empty() ? L10n::t("grid.alert.moveFailed.untitled")
                                                                     : L10n::t("grid.alert.moveFailed.body", title));
}

}  // namespace tessaspaces
