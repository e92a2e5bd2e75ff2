#include "app/AppDelegate.h"

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <utility>

#include "app/Alerts.h"
#include "app/HotKeySet.h"
#include "app/LaunchWindowController.h"
#include "hotkeys/HotKeyCenter.h"
#include "model/DisplayScreens.h"
#include "platform/Platform.h"
#include "settings/ConfigStore.h"
#include "settings/Log.h"
#include "settings/Notifications.h"
#include "settings/Settings.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

constexpr Duration cornerInterval = 120ms;
/// The system's own window must not come up before ours has told what it is about.
constexpr Duration requestDelay = 400ms;

/// One window of a kind: the open one comes to the front.
template <class Window, class Make>
void presentOne(QPointer<Window>& window, Make make) {
  if (!window) window = make();
  window->present();
}

}  // namespace

AppDelegate::AppDelegate(AppParts parts)
    : parts_(std::move(parts)), reopen_([this] { applicationShouldHandleReopen(); }) {}

AppDelegate::~AppDelegate() {
  LaunchWindowController::shared().onReady = {};
  // Their actions use the grid.
  HotKeyCenter::shared().unregisterAll();
}

void AppDelegate::applicationDidFinishLaunching() {
  ConfigStore::migrateFromUserDefaults(Settings::allKeys());
  Log::info("=== tessa⊞spaces start === (config: {})", ConfigStore::fileURL().string());
  if (parts_.updates != nullptr) parts_.updates->checkOnLaunchIfEnabled();
  if (parts_.makeGrid) grid_ = parts_.makeGrid();

  auto& launch = LaunchWindowController::shared();
  launch.onReady = [guard = QPointer(this)] {
    if (guard) guard->becomeReady();
  };
  launch.show();
  observeNotifications();

  // What can wait does, so that the keys work as soon as can be.
  platform().dispatch().async([guard = QPointer(this)] {
    if (!guard) return;
    guard->configWatcher_.start();
    guard->reopen_.start();
  });
}

void AppDelegate::becomeReady() {
  buildMenuBar();
  startHotCorner();
  registerHotKeys();
  platform().dispatch().async([guard = QPointer(this)] {
    if (!guard) return;
    guard->statusItem_->start();
    // Only now: the emission that made the program ready must not register the keys once more.
    guard->observeWindowManager();
    guard->advertiseGrid();
    if (guard->grid_) guard->grid_->prepare();
  });
}

void AppDelegate::observeNotifications() {
  const auto observe = [this](std::string_view name, auto reaction) {
    observers_.push_back(Notifications::observe(name, [this, reaction] { reaction(*this); }));
  };
  const auto reload = [](AppDelegate& self) {
    if (self.grid_) self.grid_->reload();
  };
  // Before the start is ready there is nothing to rebuild: it will be built from the settings as they are.
  const auto whenReady = [](void (AppDelegate::*reaction)()) {
    return [reaction](AppDelegate& self) {
      if (self.statusItem_) (self.*reaction)();
    };
  };
  observe(Notifications::qualityChanged, [reload](AppDelegate& self) {
    reload(self);
    if (self.statusItem_) self.advertiseGrid();
  });
  observe(Notifications::wallpaperStoreChanged, reload);
  observe(Notifications::hotkeysChanged, whenReady(&AppDelegate::registerHotKeys));
  observe(Notifications::languageChanged, whenReady(&AppDelegate::buildMenuBar));
  observe(Notifications::menuBarVisibilityChanged, whenReady(&AppDelegate::applyMenuBarVisibility));
}

void AppDelegate::observeWindowManager() {
  // Another window manager may leave free what the last one had.
  observers_.push_back(platform().windowServer().windowManagerChanged.connect([this] {
    const bool wanting = !HotKeyCenter::shared().failures().empty();
    if (!wanting || !platform().windowServer().windowManagerName()) return;
    registerHotKeys();
    LaunchWindowController::shared().refresh();
  }));
  observers_.push_back(platform().hotKeys().combosLost.connect([this] {
    registerHotKeys();
    LaunchWindowController::shared().refresh();
  }));
  observers_.push_back(platform().screens().changed.connect([this] { advertiseGrid(); }));
}

void AppDelegate::advertiseGrid() {
  platform().windowServer().setDesktopLayout(Settings::gridRows(), Settings::gridColumns());
}

void AppDelegate::buildMenuBar() {
  if (!statusItem_) statusItem_ = std::make_unique<StatusItem>();
  statusItem_->setToolTip(localized("menu.tooltip"));
  Menu::fill(statusItem_->menu(), [this](MenuCommand command) { return target(command); });
  applyMenuBarVisibility();
}

void AppDelegate::applyMenuBarVisibility() {
  statusItem_->setVisible(!Settings::hideMenuBarIcon());
}

void AppDelegate::registerHotKeys() {
  HotKeySet::registerAll(grid_.get());
}

void AppDelegate::startHotCorner() {
  cornerTimer_ = platform().dispatch().every(cornerInterval, [this] { cornerTick(); });
}

void AppDelegate::cornerTick() {
  const auto corners = allCases<HotCorner>();
  const bool anyAction = std::any_of(corners.begin(), corners.end(), [](HotCorner corner) {
    return Settings::hotCornerAction(corner) != HotCornerAction::none;
  });
  // Asking for the pointer wakes the window server as well.
  if (!anyAction) return corners_.skip();
  const auto screens = platform().screens().screens();
  if (screens.empty()) return;
  if (const auto corner = corners_.tick(platform().screens().pointer(), screens.front()->frame)) {
    perform(Settings::hotCornerAction(*corner), screens.front());
  }
}

void AppDelegate::perform(HotCornerAction action, const ScreenRef& on) {
  if (!grid_) return;
  switch (action) {
    case HotCornerAction::none: break;
    case HotCornerAction::showGrid: HotKeySet::toggle(*grid_, on); break;
    case HotCornerAction::toggleGridView: grid_->toggleGridView(); break;
  }
}

std::function<void()> AppDelegate::target(MenuCommand command) {
  switch (command) {
    case MenuCommand::separator: break;
    case MenuCommand::showGrid:
      if (grid_) return [this] { showGrid(); };
      break;
    case MenuCommand::openSettings:
      if (parts_.settings != nullptr) return [this] { openSettings(); };
      break;
    case MenuCommand::checkForUpdates:
      if (parts_.updates != nullptr) return [updates = parts_.updates] { updates->checkForUpdates(); };
      break;
    case MenuCommand::showAbout: return [this] { showAbout(); };
    case MenuCommand::showLicenses: return [this] { showLicenses(); };
    case MenuCommand::showPermissions: return [this] { showPermissions(); };
    case MenuCommand::requestPermissions: return [this] { requestPermissions(); };
    case MenuCommand::quit: return [this] { terminate(); };
  }
  return {};
}

void AppDelegate::showGrid() {
  if (grid_) grid_->show(Spaces::screenWithCursor());
}

void AppDelegate::openSettings() {
  if (parts_.settings != nullptr) parts_.settings->show();
}

void AppDelegate::showAbout() {
  presentOne(aboutWindow_, [] { return new AboutWindow; });
}

void AppDelegate::showLicenses() {
  presentOne(licensesWindow_, [] { return new LicensesWindow; });
}

void AppDelegate::showPermissions() {
  presentOne(permissionsWindow_, [this] { return new PermissionsWindow([this] { requestPermissions(); }); });
}

void AppDelegate::requestPermissions() {
  auto& permissions = platform().permissions();
  const bool accessibility = permissions.hasAccessibility();
  const bool recording = permissions.hasScreenRecording();
  Log::info("PERMISSIONS REQUESTED: AX={} SR={}", accessibility, recording);
  platform().dispatch().after(requestDelay, [] { platform().permissions().request(true); });
  const auto answer = [](bool granted, std::string_view noKey) {
    return L10n::t(granted ? "alert.common.yes" : noKey);
  };
  Alerts::info(localized("alert.permissionsRequested.title"),
               localized("alert.permissionsRequested.body", answer(accessibility, "alert.permissionsRequested.axNo"),
                         answer(recording, "alert.permissionsRequested.srNo")));
}

void AppDelegate::terminate() {
  QCoreApplication::exit(EXIT_SUCCESS);
}

bool AppDelegate::applicationShouldHandleReopen() {
  if (Settings::hideMenuBarIcon()) {
    Settings::setHideMenuBarIcon(false);
    if (statusItem_) applyMenuBarVisibility();
    Log::info("MENU BAR: icon restored by relaunching the app");
  }
  openSettings();
  LaunchWindowController::shared().showAgain();
  return true;
}

}  // namespace tessaspaces
