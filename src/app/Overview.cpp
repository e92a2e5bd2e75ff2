#include "app/Overview.h"

#include <chrono>
#include <utility>

#include "bridges/DisplaySpaces.h"
#include "hotkeys/HotKeyCenter.h"
#include "model/DisplayScreens.h"
#include "platform/Platform.h"
#include "settings/Log.h"
#include "ui/PanelWindow.h"
#ifdef TESSASPACES_HAS_X11
#include "ui/x11/X11PanelSystem.h"
#endif

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

/// The program has its keys by then; what can wait does until here.
constexpr Duration preparationDelay = 300ms;
/// By then a desktop that was switched to has been drawn, and one that was only passed through has been left.
constexpr Duration restBeforeLearning = 1500ms;
/// Previews and wallpapers that were asked for at the opening are there by then.
constexpr Duration restBeforeTest = 1s;

/// For the window system that Qt runs on, whichever platform the program does.
std::unique_ptr<PanelSystem> makePanelSystem() {
#ifdef TESSASPACES_HAS_X11
  if (auto system = X11PanelSystem::make()) return system;
#endif
  return std::make_unique<QtPanelSystem>();
}

}  // namespace

Overview::Overview()
    : system_(makePanelSystem()), coordinator_(panelWindows(*system_), backgrounds_), lock_([this] {
        if (!coordinator_.isOnScreen()) return;
        Log::info("GRID: the screen is locked — open grids closed");
        coordinator_.close();
      }) {
  // The system delivers no hot keys while a panel has the keyboard.
  coordinator_.hotKeyPressed = [](KeyCombo combo) { return HotKeyCenter::shared().press(combo); };
}

Overview::~Overview() = default;

bool Overview::isVisible() const {
  return coordinator_.isVisible();
}

void Overview::show(const ScreenRef& focusedOn) {
  coordinator_.show(focusedOn);
}

void Overview::closeAnimated() {
  coordinator_.closeAnimated();
}

void Overview::toggleGridView() {
  coordinator_.toggleGridView();
}

void Overview::reload() {
  backgrounds_.refresh();
  coordinator_.reload();
}

void Overview::prepare() {
  platform().dispatch().after(preparationDelay, [alive = std::weak_ptr(alive_)] {
    const auto self = alive.lock();
    if (!self) return;
    Overview& overview = **self;
    overview.coordinator_.prepare();
    overview.lock_.start();
    overview.spacesChanged_ = platform().windowServer().spacesChanged.connect([&overview] { overview.learnSoon(); });
    overview.learnSoon();
  });
}

void Overview::learnSoon() {
  platform().dispatch().after(restBeforeLearning, [alive = std::weak_ptr(alive_), change = ++changes_] {
    const auto self = alive.lock();
    if (self && (*self)->changes_ == change) (*self)->learn();
  });
}

void Overview::learn() {
  // What is on the screen now is the overview itself.
  if (coordinator_.isOnScreen()) return learnSoon();
  for (const ScreenRef& screen : Spaces::distinctScreens()) {
    const auto display = Spaces::displayUUID(screen);
    if (!display) continue;
    if (const SpaceID shown = Spaces::currentSpaceID(*display)) backgrounds_.learn(*display, shown);
  }
}

void Overview::test(std::function<void(GridSelfTestReport)> done) {
  coordinator_.prepare();
  coordinator_.show(Spaces::screenWithCursor());
  platform().dispatch().after(restBeforeTest, [alive = std::weak_ptr(alive_), done = std::move(done)] {
    const auto self = alive.lock();
    if (!self) return;
    GridSelfTestReport report = runGridSelfTest((*self)->coordinator_);
    (*self)->coordinator_.close();
    done(std::move(report));
  });
}

}  // namespace tessaspaces
