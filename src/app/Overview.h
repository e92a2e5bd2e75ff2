#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "app/AppParts.h"
#include "app/ScreenLock.h"
#include "base/Signal.h"
#include "grid/GridCoordinator.h"
#include "grid/GridSelfTest.h"
#include "ui/PanelSystem.h"
#include "ui/wallpapers/DesktopBackgrounds.h"

namespace tessaspaces {

/// The overview as the shell has it: the grid's coordinator with real windows, wallpapers, and what else the program
/// adds to it. Made at start, shown long after; main thread, while a platform is set.
class Overview final : public OverviewGrid {
 public:
  Overview();
  ~Overview() override;

  [[nodiscard]] bool isVisible() const override;
  void show(const ScreenRef& focusedOn) override;
  void closeAnimated() override;
  void toggleGridView() override;
  void reload() override;
  /// Has ready what the first opening needs, and begins to listen for the screen being locked and to learn what
  /// desktops look like. Returns at once.
  void prepare() override;

  /// Opens it, checks it and closes it again; `done` is told what was found.
  void test(std::function<void(GridSelfTestReport)> done);

 private:
  void learnSoon();
  void learn();

  std::unique_ptr<PanelSystem> system_;
  DesktopBackgrounds backgrounds_;
  GridCoordinator coordinator_;
  ScreenLock lock_;
  ScopedConnection spacesChanged_;
  /// Gone with this object: what is still to come then does nothing.
  std::shared_ptr<Overview*> alive_ = std::make_shared<Overview*>(this);
  /// Counts the changes of desktops: only after the last one is there something to learn.
  std::uint64_t changes_ = 0;
};

}  // namespace tessaspaces
