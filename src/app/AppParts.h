#pragma once

#include <functional>
#include <memory>

#include "platform/Screens.h"

namespace tessaspaces {

// The parts of the program that the shell drives without knowing how they are made. A part that is not
// there takes its menu items and hot keys with it. Main thread.

/// The full-screen overview of all desktops.
class OverviewGrid {
 public:
  virtual ~OverviewGrid() = default;
  /// Open on any display.
  [[nodiscard]] virtual bool isVisible() const = 0;
  /// Opens it on every display, the keyboard on the one that `screen` belongs to; null: on the first.
  virtual void show(const ScreenRef& focusedOn) = 0;
  virtual void closeAnimated() = 0;
  /// Between the standard and the exploded view; nothing while it is closed.
  virtual void toggleGridView() = 0;
  /// Takes in changed settings.
  virtual void reload() = 0;
  /// The program is ready and its keys work: the first opening may be prepared. Returns at once.
  virtual void prepare() {}
};

class SettingsWindow {
 public:
  virtual ~SettingsWindow() = default;
  virtual void show() = 0;
};

class UpdateController {
 public:
  virtual ~UpdateController() = default;
  /// At start; returns at once.
  virtual void checkOnLaunchIfEnabled() = 0;
  virtual void checkForUpdates() = 0;
};

/// What there is of them in this program. The grid is made in the course of the start, the others exist
/// before it and outlive the delegate.
struct AppParts {
  std::function<std::unique_ptr<OverviewGrid>()> makeGrid;
  SettingsWindow* settings = nullptr;
  UpdateController* updates = nullptr;
};

}  // namespace tessaspaces
