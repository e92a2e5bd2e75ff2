// What else the user can do in a panel of the overview, and what concerns its neighbours.

#include <algorithm>
#include <string_view>
#include <utility>

#include "grid/GridPanelController.h"
#include "model/DisplayScreens.h"
#include "platform/Platform.h"
#include "settings/L10n.h"
#include "settings/Log.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

/// Keys that are held down to go on and on. The others open and close something: once is enough.
bool mayRepeat(KeyCombo combo) {
  if (combo == Settings::overviewGridCombo() || combo == Settings::gridViewToggleCombo()) return false;
  const auto contains = [&](const auto& codes) {
    return std::find(codes.begin(), codes.end(), combo.keyCode) != codes.end();
  };
  return contains(KeyCombo::arrowKeyCodes) || contains(KeyCombo::digitKeyCodes);
}

std::string reason(Spaces::DesktopRemoval outcome) {
  switch (outcome) {
    case Spaces::DesktopRemoval::noSuchDesktop: return L10n::t("grid.removal.noSuchDesktop");
    case Spaces::DesktopRemoval::fullScreenSpace: return L10n::t("grid.removal.fullScreenSpace");
    case Spaces::DesktopRemoval::lastDesktop: return L10n::t("grid.removal.lastDesktop");
    case Spaces::DesktopRemoval::unsupported: return L10n::t("grid.removal.unsupported");
    case Spaces::DesktopRemoval::anotherIsUnderWay: return L10n::t("grid.removal.anotherIsUnderWay");
    case Spaces::DesktopRemoval::notRemoved:
    case Spaces::DesktopRemoval::removed: break;
  }
  return L10n::t("grid.removal.notRemoved");
}

}  // namespace

void GridPanelController::rename(const DesktopRef& desktop, const Rect& tile) {
  if (!isVisible() || !desktop) return;
  const auto found = std::find(snapshot_.desktops.begin(), snapshot_.desktops.end(), desktop);
  const auto label = desktop->label(static_cast<int>(found - snapshot_.desktops.begin()));
  view_->editName(tile, label, [weak = weak_from_this(), desktop, label](std::optional<std::string> name) {
    // A name that was left as it is stays what it is, be it the window manager's or none.
    if (!name || *name == label) return;
    Settings::setDesktopNickname(*name, desktop->nicknameKey());
    Log::debug("GRID: desktop {} is called '{}'", desktop->spaceID, *name);
    // On all panels: displays may share it.
    if (const auto self = weak.lock()) self->contents_->refreshSoon();
  });
}

void GridPanelController::closeWindow(const SpaceWindow& window) {
  platform().dispatch().background([window] {
    const auto found = platform().accessibility().find(window.pid, window.id);
    if (!found || !found->close()) Log::warning("GRID: window {} could not be asked to close", window.id);
  });
}

void GridPanelController::addDesktop() {
  if (!isVisible() || adding_) return;
  const auto display = snapshot_.desktops.empty() ? Spaces::displayUUID(screen_)
                                                  : std::optional(snapshot_.desktops.front()->displayUUID);
  if (!display) return;
  setAdding(true);
  platform().dispatch().background([weak = weak_from_this(), display = *display] {
    const auto space = Spaces::addDesktop(display);
    platform().dispatch().async([weak, space] {
      if (const auto self = weak.lock()) self->desktopAdded(space);
    });
  });
}

void GridPanelController::setAdding(bool adding) {
  adding_ = adding;
  root.setBusyAdding(adding);
  redraw();
}

void GridPanelController::desktopAdded(std::optional<SpaceID> space) {
  setAdding(false);
  contents_->refreshSoon();
  if (!space && isVisible()) view_->alert(L10n::t("grid.alert.addFailed.title"), L10n::t("grid.alert.addFailed.body"));
}

void GridPanelController::removeDesktop(const DesktopRef& desktop) {
  if (!isVisible() || !desktop) return;
  const auto found = std::find(snapshot_.desktops.begin(), snapshot_.desktops.end(), desktop);
  const auto label = desktop->label(static_cast<int>(found - snapshot_.desktops.begin()));
  platform().dispatch().background([weak = weak_from_this(), desktop, label] {
    const auto outcome = Spaces::removeDesktop(desktop->displayUUID, desktop->spaceID);
    platform().dispatch().async([weak, label, outcome] {
      if (const auto self = weak.lock()) self->desktopRemoved(label, outcome);
    });
  });
}

void GridPanelController::desktopRemoved(const std::string& label, Spaces::DesktopRemoval outcome) {
  contents_->refreshSoon();
  if (outcome == Spaces::DesktopRemoval::removed || !isVisible()) return;
  view_->alert(L10n::t("grid.alert.removeFailed.title", label), reason(outcome));
}

void GridPanelController::openMenu(Point at, std::vector<GridMenuItem> items) {
  if (isVisible()) view_->openMenu(at, std::move(items));
}

void GridPanelController::flyBack(const GridScene::Window& window, const Rect& from, const Rect& to) {
  if (isVisible()) view_->flyBack(window, from, to);
}

bool GridPanelController::hotKey(KeyCombo combo, bool repeated) {
  if (repeated && !mayRepeat(combo)) return false;
  return onHotKey && onHotKey(combo);
}

void GridPanelController::covered() {
  handle(GridActions::Close{});
}

// What concerns the other panels.

void GridPanelController::dragOutside(std::optional<Point> cursor) {
  if (onDragOutside) onDragOutside(*this, cursor);
}

void GridPanelController::dropOutside(const SpaceWindow& window, SpaceID fromSpace, Point cursor, Point windowTopLeft) {
  if (onDropOutside) onDropOutside(*this, window, fromSpace, cursor, windowTopLeft);
}

void GridPanelController::passKeyboard(bool backwards) {
  if (onPassKeyboard) onPassKeyboard(*this, backwards);
}

void GridPanelController::filterChanged(const std::string& filter) {
  if (onFilterChanged) onFilterChanged(*this, filter);
}

bool GridPanelController::goToBestMatch() {
  return onGoToBestMatch && onGoToBestMatch();
}

void GridPanelController::toggleView() {
  if (onToggleView) {
    onToggleView();
  } else {
    toggleGridView();
  }
}

}  // namespace tessaspaces
