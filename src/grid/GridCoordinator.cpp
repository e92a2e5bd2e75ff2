#include "grid/GridCoordinator.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "model/DisplayScreens.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces {

GridCoordinator::GridCoordinator(MakeGridPanelView makeView, TileBackgrounds& backgrounds)
    : self_(this, [](GridCoordinator*) {}),
      makeView_(std::move(makeView)),
      contents_(std::make_shared<GridContents>(backgrounds)),
      displayLayout_(currentDisplayLayout()) {
  const auto screens = platform().screens().screens();
  if (!screens.empty()) controller(screens.front());
  screensChanged_ = platform().screens().changed.connect([weak = std::weak_ptr(self_)] {
    if (const auto self = weak.lock()) self->displaysChanged();
  });
}

GridCoordinator::~GridCoordinator() {
  // Nothing comes back from panels that somebody still holds for a moment.
  self_.reset();
}

std::vector<ScreenRef> GridCoordinator::panelScreens(const ScreenRef& preferred) {
  const auto setOf = [](const Screen& screen) { return screen.mirrors != 0 ? screen.mirrors : *screen.displayID; };
  std::vector<ScreenRef> screens;
  for (const auto& screen : Spaces::distinctScreens()) {
    const auto same = std::find_if(screens.begin(), screens.end(),
                                   [&](const ScreenRef& other) { return setOf(*other) == setOf(*screen); });
    if (same == screens.end()) {
      screens.push_back(screen);
    } else if (preferred && preferred->displayID == screen->displayID) {
      *same = screen;
    }
  }
  return screens;
}

std::map<DisplayID, Rect> GridCoordinator::currentDisplayLayout() {
  std::map<DisplayID, Rect> layout;
  for (const auto& screen : platform().screens().screens()) {
    if (const auto id = Spaces::directDisplayID(screen)) layout.emplace(*id, screen->frame);
  }
  return layout;
}

GridCoordinator::Panel GridCoordinator::controller(const ScreenRef& screen) {
  const auto id = Spaces::directDisplayID(screen);
  if (!id) return nullptr;
  if (const auto known = controllers_.find(*id); known != controllers_.end()) return known->second;
  const auto panel = std::make_shared<GridPanelController>(makeView_, contents_);
  connect(*panel);
  controllers_.emplace(*id, panel);
  const auto screens = platform().screens().screens();
  if (!screens.empty() && Spaces::directDisplayID(screens.front()) == id) GridPanelController::shared = panel;
  return panel;
}

void GridCoordinator::connect(GridPanelController& panel) {
  const std::weak_ptr weak = self_;
  panel.onCloseAll = [weak] {
    if (const auto self = weak.lock()) self->closeAnimated();
  };
  panel.onWillSwitch = [weak, weakPanel = panel.weak_from_this()] {
    const auto self = weak.lock();
    const auto switching = weakPanel.lock();
    if (!self) return;
    for (const auto& other : self->visiblePanels()) {
      if (other != switching) other->closeAnimated(false);
    }
  };
  panel.onDropOutside = [weak](GridPanelController& source, const SpaceWindow& window, SpaceID space, Point cursor,
                               Point windowTopLeft) {
    if (const auto self = weak.lock()) self->dropAcrossDisplays(source, window, space, cursor, windowTopLeft);
  };
  panel.onDragOutside = [weak](GridPanelController& source, std::optional<Point> cursor) {
    if (const auto self = weak.lock()) self->dragAcrossDisplays(source, cursor);
  };
  panel.onPassKeyboard = [weak](GridPanelController& source, bool backwards) {
    if (const auto self = weak.lock()) self->passKeyboard(source, backwards);
  };
  panel.onFilterChanged = [weak](GridPanelController& source, const std::string& filter) {
    const auto self = weak.lock();
    if (!self) return;
    for (const auto& other : self->visiblePanels()) {
      if (other.get() != &source) other->setFilter(filter);
    }
  };
  panel.onGoToBestMatch = [weak] {
    const auto self = weak.lock();
    return self && self->goToBestMatch();
  };
  panel.onToggleView = [weak] {
    if (const auto self = weak.lock()) self->toggleGridView();
  };
  panel.onHotKey = [weak](KeyCombo combo) {
    const auto self = weak.lock();
    return self && self->hotKeyPressed && self->hotKeyPressed(combo);
  };
}

void GridCoordinator::prepare() {
  prepared_ = true;
  {
    const auto reading = platform().windowServer().beginRead();
    contents_->prepare();
    for (const auto& screen : panelScreens()) {
      if (const auto panel = controller(screen)) panel->prepare(screen);
    }
  }
  fitPreviews();
  contents_->keepPreviews();
  contents_->complete();
}

void GridCoordinator::fitPreviews() {
  std::optional<PreviewLimits> limits;
  for (const auto& [id, panel] : controllers_) {
    const auto needed = panel->previewLimits();
    if (!needed) continue;
    if (!limits) limits = needed;
    limits->scale = std::max(limits->scale, needed->scale);
    limits->longestSide = std::max(limits->longestSide, needed->longestSide);
  }
  if (limits) contents_->setPreviewLimits(*limits);
}

void GridCoordinator::show(const ScreenRef& focusedOn) {
  const auto preferred = Spaces::canonicalScreen(focusedOn);
  const auto screens = panelScreens(preferred);
  if (screens.empty()) return;
  const auto wanted = Spaces::directDisplayID(preferred);
  const auto found = std::find_if(screens.begin(), screens.end(), [&](const ScreenRef& screen) {
    return wanted && Spaces::directDisplayID(screen) == wanted;
  });
  const auto primary = found == screens.end() ? screens.front() : *found;

  contents_->renew();
  for (const auto& screen : screens) {
    if (Spaces::directDisplayID(screen) == Spaces::directDisplayID(primary)) continue;
    if (const auto panel = controller(screen)) panel->show(screen, false);
  }
  // Last, so that it ends up with the keyboard.
  if (const auto panel = controller(primary)) panel->show(primary, true);
  Log::debug("GRID shown on {} display(s), keyboard on {}", visiblePanels().size(), primary->name);
  contents_->complete();
  // With more or fewer desktops the tiles have another size.
  platform().dispatch().async([weak = std::weak_ptr(self_)] {
    if (const auto self = weak.lock()) self->fitPreviews();
  });
}

bool GridCoordinator::isVisible() const {
  return std::any_of(controllers_.begin(), controllers_.end(),
                     [](const auto& entry) { return entry.second->isVisible(); });
}

bool GridCoordinator::isOnScreen() const {
  return std::any_of(controllers_.begin(), controllers_.end(),
                     [](const auto& entry) { return entry.second->isOnScreen(); });
}

std::vector<std::shared_ptr<GridPanelController>> GridCoordinator::visiblePanels() const {
  std::vector<Panel> panels;
  for (const auto& screen : Spaces::distinctScreens()) {
    const auto found = controllers_.find(screen->displayID.value_or(0));
    if (found != controllers_.end() && found->second->isVisible()) panels.push_back(found->second);
  }
  return panels;
}

void GridCoordinator::close() {
  // Also those that are zooming away: whoever wants it closed at once wants none of it left.
  const auto panels = controllers_;
  for (const auto& [id, panel] : panels) panel->close();
}

void GridCoordinator::closeAnimated() {
  const auto panels = controllers_;
  for (const auto& [id, panel] : panels) panel->closeAnimated();
}

void GridCoordinator::toggleGridView() {
  const auto panels = visiblePanels();
  for (const auto& panel : panels) panel->toggleGridView();
  if (!panels.empty()) fitPreviews();
}

void GridCoordinator::reload() {
  const auto panels = controllers_;
  for (const auto& [id, panel] : panels) panel->reload();
  fitPreviews();
}

void GridCoordinator::displaysChanged() {
  auto layout = currentDisplayLayout();
  if (layout == displayLayout_) return;
  displayLayout_ = std::move(layout);
  const bool wasVisible = isVisible();
  close();
  const auto screens = platform().screens().screens();
  std::set<DisplayID> live;
  for (const auto& screen : screens) {
    if (const auto id = Spaces::directDisplayID(screen)) live.insert(*id);
  }
  std::erase_if(controllers_, [&](const auto& entry) { return !live.contains(entry.first); });
  if (!screens.empty()) controller(screens.front());
  Log::info("GRID: displays changed ({} connected){}", live.size(), wasVisible ? " — open grids closed" : "");
  if (!prepared_) return;
  platform().dispatch().async([weak = std::weak_ptr(self_)] {
    const auto self = weak.lock();
    if (self && !self->isVisible()) self->prepare();
  });
}

void GridCoordinator::dropAcrossDisplays(GridPanelController& source, const SpaceWindow& window, SpaceID space,
                                         Point cursor, Point windowTopLeft) {
  const auto target = std::find_if(controllers_.begin(), controllers_.end(), [&](const auto& entry) {
    return entry.second.get() != &source && entry.second->containsOnScreen(cursor);
  });
  if (target != controllers_.end()) {
    if (const auto drop = target->second->root.externalDropTarget(cursor, windowTopLeft)) {
      source.moveWindow(window.id, space, drop->desktop, drop->topLeft, drop->rect, *target->second);
      return;
    }
  }
  Log::debug("DROP: window {} released outside any desktop tile — not moved", window.id);
  source.root.returnPreview(window.id, space, windowTopLeft);
}

void GridCoordinator::dragAcrossDisplays(const GridPanelController& source, std::optional<Point> cursor) {
  for (const auto& [id, other] : controllers_) {
    if (other.get() == &source || !other->isVisible()) continue;
    const bool over = cursor && other->containsOnScreen(*cursor);
    other->root.setExternalHover(over ? cursor : std::nullopt);
    other->root.showCarried(over ? source.root.carriedIn(other->root) : std::nullopt);
  }
}

void GridCoordinator::passKeyboard(GridPanelController& from, bool backwards) {
  const auto panels = visiblePanels();
  const auto found =
      std::find_if(panels.begin(), panels.end(), [&](const auto& panel) { return panel.get() == &from; });
  if (found == panels.end() || panels.size() < 2) return;
  const auto position = static_cast<std::size_t>(found - panels.begin());
  const auto step = backwards ? panels.size() - 1 : 1;
  const auto next = panels[(position + step) % panels.size()];
  // In this order nobody else can have it in between.
  next->setKeyboard(true);
  from.setKeyboard(false);
}

bool GridCoordinator::goToBestMatch() {
  Panel best;
  std::optional<GridRootView::Match> match;
  for (const auto& panel : visiblePanels()) {
    auto candidate = panel->root.bestMatch();
    if (!candidate) continue;
    // Of equally good ones the one where the user is.
    const bool better =
        !match || candidate->rank < match->rank || (candidate->rank == match->rank && panel->hasKeyboard());
    if (!better) continue;
    match = std::move(candidate);
    best = panel;
  }
  if (!best) return false;
  best->handle(GridActions::SwitchSpaceAndActivate{match->desktop->spaceID, match->window});
  return true;
}

}  // namespace tessaspaces
