#pragma once

#include <QObject>
#include <QPointer>
#include <memory>
#include <optional>
#include <vector>

#include "app/AppParts.h"
#include "app/ConfigWatcher.h"
#include "app/HotCorners.h"
#include "app/InfoWindows.h"
#include "app/Menu.h"
#include "app/ReopenService.h"
#include "app/StatusItem.h"
#include "base/Signal.h"
#include "platform/Dispatch.h"
#include "settings/Enums.h"

namespace tessaspaces {

/// The program's spine: brings the parts up in their order, and routes what the menu, the hot keys and the
/// hot corners ask for. One for each process, on the main thread, while a platform is set.
class AppDelegate final : public QObject {
 public:
  explicit AppDelegate(AppParts parts = {});
  ~AppDelegate() override;

  /// The start: to be called once, before the event loop is turned.
  void applicationDidFinishLaunching();
  /// The user has launched the program again while it runs: brings a hidden icon back, and the readiness
  /// screen if it has something to tell.
  bool applicationShouldHandleReopen();

  void buildMenuBar();
  void applyMenuBarVisibility();
  void startHotCorner();
  void registerHotKeys();
  /// Lets the window manager know the grid, for its own directions and pagers.
  void advertiseGrid();
  /// What a hot corner does.
  void perform(HotCornerAction action, const ScreenRef& on);

  void showGrid();
  void openSettings();
  void showAbout();
  void showLicenses();
  void showPermissions();
  /// Says what is allowed now, and asks the system for the rest a moment later.
  void requestPermissions();
  void terminate();

  /// Null until `buildMenuBar`; the same one from then on.
  [[nodiscard]] StatusItem* statusItem() const { return statusItem_.get(); }

 private:
  void becomeReady();
  void observeNotifications();
  void observeWindowManager();
  void cornerTick();
  [[nodiscard]] std::function<void()> target(MenuCommand command);

  AppParts parts_;
  std::unique_ptr<OverviewGrid> grid_;
  std::unique_ptr<StatusItem> statusItem_;
  HotCorners corners_;
  RegistrationRef cornerTimer_;
  ReopenService reopen_;
  ConfigWatcher configWatcher_;
  std::vector<ScopedConnection> observers_;
  QPointer<AboutWindow> aboutWindow_;
  QPointer<LicensesWindow> licensesWindow_;
  QPointer<PermissionsWindow> permissionsWindow_;
};

}  // namespace tessaspaces
