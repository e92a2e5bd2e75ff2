#include "grid/GridPanelController.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "grid/GridZoomWish.h"
#include "model/DisplayScreens.h"
#include "platform/Platform.h"
#include "settings/Log.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

/// A menu of another program that has the keyboard closes soon, or not for a while.
constexpr Duration keyboardPatience = 300ms;
constexpr Duration keyboardPause = 20ms;
constexpr Duration keyboardLongPause = 250ms;

using Direction = GridPanelView::Zoom::Direction;

/// Pixels of a preview for each device pixel that a tile is wide. A picture that stands where its window does needs no
/// more than one; windows that are drawn apart gain by some more.
double previewFactor(ImageQuality quality, bool exploded) {
  switch (quality) {
    case ImageQuality::low: return 0.5;
    case ImageQuality::medium: return 1;
    case ImageQuality::high: return exploded ? 1.5 : 1;
  }
  return 1;
}

}  // namespace

/// Lets the user's doings through to the root view as long as the panel is not on its way out: a second click on a
/// panel that zooms away is meant for nothing.
class GridPanelController::Input final : public GridPanelInput {
 public:
  explicit Input(GridPanelController& panel) : panel_(panel) {}

  void pointerMoved(Point at) override {
    if (panel_.isVisible()) panel_.root.pointerMoved(at);
  }
  void pointerLeft() override {
    if (panel_.isVisible()) panel_.root.pointerLeft();
  }
  void pressed(GridButton button, Point at) override {
    if (panel_.isVisible()) panel_.root.pressed(button, at);
  }
  void released(GridButton button, Point at) override {
    if (panel_.isVisible()) panel_.root.released(button, at);
  }
  void key(GridKey key) override {
    if (panel_.isVisible()) panel_.root.key(key);
  }
  void typed(const std::string& text) override {
    if (panel_.isVisible()) panel_.root.typed(text);
  }
  bool hotKey(KeyCombo combo, bool repeated) override { return panel_.root.hotKey(combo, repeated); }
  void covered() override {
    if (panel_.isVisible()) panel_.root.covered();
  }

 private:
  GridPanelController& panel_;
};

std::weak_ptr<GridPanelController> GridPanelController::shared;

GridPanelController::GridPanelController(const MakeGridPanelView& makeView, std::shared_ptr<GridContents> contents)
    : root(*this), contents_(std::move(contents)), input_(std::make_unique<Input>(*this)), view_(makeView(*input_)) {
  contentsChanged_ = contents_->changed.connect([this](GridContents::Change change) { contentsChanged(change); });
}

GridPanelController::~GridPanelController() = default;

// What is shown.

void GridPanelController::fit(const ScreenRef& screen) {
  screen_ = screen;
  const auto uuid = Spaces::displayUUID(screen).value_or("");
  root.setScreen(screen, Settings::gridRows(uuid), Settings::gridColumns(uuid));
  root.setExplodedAll(exploded_);
}

void GridPanelController::prepare(const ScreenRef& screen) {
  if (!screen || phase_ != Phase::hidden) return;
  exploded_ = Settings::gridOpensExploded();
  fit(screen);
  takeDesktops();
}

void GridPanelController::takeDesktops() {
  snapshot_ = contents_->desktopsOf(screen_);
  root.setSnapshot(snapshot_);
  const auto& layout = root.layout();
  // One that would get no tile would be added out of sight.
  root.setCanAdd(
      std::ssize(snapshot_.desktops) <
      std::min<std::ptrdiff_t>(Settings::maxDesktops, static_cast<std::ptrdiff_t>(layout.rows()) * layout.columns()));
  takeBackgrounds();
}

void GridPanelController::takeBackgrounds() {
  const auto& contents = root.layout().contentRects();
  if (contents.empty()) return;
  const double scale = pixelsPerPoint();
  const auto pixels = [&](double length) { return std::max(1, static_cast<int>(std::lround(length * scale))); };
  root.setBackgrounds(
      contents_->backgrounds(snapshot_, {pixels(contents.front().width), pixels(contents.front().height)}));
}

void GridPanelController::contentsChanged(GridContents::Change change) {
  if (!isVisible()) return;
  switch (change) {
    case GridContents::Change::desktops:
      if (freshness_) takeDesktops();
      break;
    case GridContents::Change::pictures: break;
    case GridContents::Change::names: root.setApplicationNames(contents_->applicationNames()); break;
    case GridContents::Change::backgrounds: takeBackgrounds(); break;
  }
  redraw();
}

double GridPanelController::pixelsPerPoint() const {
  if (wasOpen_) return view_->scale();
  return screen_ ? screen_->scale : 1;
}

std::optional<PreviewLimits> GridPanelController::previewLimits() const {
  const auto& contents = root.layout().contentRects();
  if (contents.empty() || !screen_ || screen_->frame.isEmpty()) return std::nullopt;
  const auto& content = contents.front();
  const double factor = previewFactor(Settings::quality(), exploded_);
  const double side = std::max(content.width, content.height) * pixelsPerPoint() * factor;
  return PreviewLimits{std::min(1.0, content.width / screen_->frame.width * factor),
                       std::max(1, static_cast<int>(std::ceil(side)))};
}

void GridPanelController::startIdleWindowRefresh() {
  freshness_ = contents_->keepFresh();
}

void GridPanelController::stopIdleWindowRefresh() {
  freshness_.reset();
}

void GridPanelController::redraw() {
  if (!isVisible()) return;
  if (!root.isDragging()) {
    hold_.reset();
  } else if (!hold_) {
    hold_ = contents_->hold();
  }
  view_->show(root.scene());
}

void GridPanelController::toggleGridView() {
  exploded_ = !exploded_;
  root.setExplodedAll(exploded_);
  redraw();
}

void GridPanelController::reload() {
  if (!screen_) return;
  fit(screen_);
  takeDesktops();
  redraw();
}

bool GridPanelController::containsOnScreen(Point point) const {
  return isVisible() && screen_->frame.contains(point);
}

// Opening and closing.

void GridPanelController::show(const ScreenRef& on, std::optional<bool> primary) {
  const auto screen = on ? on : Spaces::screenWithCursor();
  if (!screen) return;
  const bool opens = !isVisible();
  if (opens) {
    ++journey_;
    exploded_ = Settings::gridOpensExploded();
    zooming_ = revealed_ = false;
    root.reset();
  }
  phase_ = Phase::open;
  fit(screen);
  takeDesktops();
  root.setApplicationNames(contents_->applicationNames());
  const bool wanted = primary.value_or(true);
  if (!wanted) restoreSystemChrome(false);
  keyboard_ = wanted;
  root.setKeyboard(keyboard_);
  startIdleWindowRefresh();
  if (opens) {
    view_->open(screen, root.scene(), currentDesktopZoom(Direction::out), {});
    const double assumed = pixelsPerPoint();
    wasOpen_ = true;
    if (pixelsPerPoint() != assumed) contentsChanged(GridContents::Change::backgrounds);
  } else {
    redraw();
  }
  holdKeyboard();
}

std::optional<GridPanelView::Zoom> GridPanelController::currentDesktopZoom(Direction direction) const {
  const auto duration = gridZoomWish();
  if (!duration) return std::nullopt;
  for (const auto& desktop : snapshot_.desktops) {
    if (!desktop->isCurrent) continue;
    if (const auto rect = zoomRect(desktop->spaceID)) return GridPanelView::Zoom{direction, *rect, *duration};
  }
  return std::nullopt;
}

void GridPanelController::close(bool restoreFocus) {
  if (!isOnScreen()) return;
  stopIdleWindowRefresh();
  restoreSystemChrome(restoreFocus);
  leave();
  hide();
}

void GridPanelController::closeAnimated(bool restoreFocus) {
  if (!isVisible()) return;
  stopIdleWindowRefresh();
  restoreSystemChrome(restoreFocus);
  closeGrid(currentDesktopZoom(Direction::in));
}

void GridPanelController::closeGrid(std::optional<GridPanelView::Zoom> zoom) {
  leave();
  if (!zoom) {
    hide();
    return;
  }
  view_->animate(*zoom, onThisJourney(&GridPanelController::hide));
}

void GridPanelController::leave() {
  ++journey_;
  phase_ = Phase::leaving;
  zooming_ = revealed_ = false;
  root.cancelDrag();
  hold_.reset();
}

void GridPanelController::hide() {
  phase_ = Phase::hidden;
  view_->close();
}

std::function<void()> GridPanelController::onThisJourney(void (GridPanelController::*work)()) {
  return [weak = weak_from_this(), journey = journey_, work] {
    const auto self = weak.lock();
    if (self && self->journey_ == journey) ((*self).*work)();
  };
}

void GridPanelController::restoreSystemChrome(bool /*restoreFocus*/) {
  const bool held = std::exchange(keyboard_, false);
  ++keyboardWish_;
  if (held) view_->giveKeyboardBack();
}

// The keyboard.

void GridPanelController::setKeyboard(bool keyboard) {
  // What one panel lets go of must not be what another one has just taken: only the one that has it does.
  const bool had = keyboard_;
  if (!keyboard) restoreSystemChrome(false);
  keyboard_ = had;
  showKeyboard(keyboard);
  holdKeyboard();
}

void GridPanelController::showKeyboard(bool keyboard) {
  if (keyboard == keyboard_) return;
  keyboard_ = keyboard;
  root.setKeyboard(keyboard);
  redraw();
}

void GridPanelController::holdKeyboard() {
  if (!keyboard_) ++keyboardWish_;  // nor is it tried any more
  if (keyboard_) tryKeyboard(++keyboardWish_, platform().dispatch().now() + keyboardPatience);
}

void GridPanelController::tryKeyboard(std::uint64_t wish, TimePoint until) {
  if (wish != keyboardWish_ || !isVisible()) return;
  // The hot key that opened the overview is still down perhaps, and holds the keyboard with it.
  platform().hotKeys().letGoOfKeyboard();
  if (view_->takeKeyboard()) {
    showKeyboard(true);
    return;
  }
  auto& dispatch = platform().dispatch();
  if (keyboard_ && dispatch.now() >= until) {
    Log::warning("GRID: keyboard held by another program");
    showKeyboard(false);
  }
  // What is typed must not go to windows that nobody sees: the panel has it as soon as the other program lets go.
  dispatch.after(keyboard_ ? keyboardPause : keyboardLongPause, [weak = weak_from_this(), wish, until] {
    if (const auto self = weak.lock()) self->tryKeyboard(wish, until);
  });
}

void GridPanelController::setFilter(const std::string& filter) {
  root.setFilter(filter);
  redraw();
}

}  // namespace tessaspaces
