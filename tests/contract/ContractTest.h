#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "contract/WorldDriver.h"

namespace tessaspaces::contract {

/// What the seam promises, whatever stands behind it.
class Contract : public testing::TestWithParam<Backend> {
 protected:
  void start(const std::vector<Monitor>& monitors = {{"main"}}) {
    driver.reset();
    driver = GetParam().make(monitors);
  }

  Platform& platform() { return driver->platform(); }
  WindowServer& server() { return platform().windowServer(); }

  ManagedDisplay display(std::size_t index = 0);
  std::string identifier(std::size_t index = 0) { return display(index).displayIdentifier.value_or(""); }
  /// Space ids of one display.
  std::vector<SpaceID> spaces(std::size_t display = 0);
  SpaceID current(std::size_t display = 0) { return server().managedDisplayGetCurrentSpace(identifier(display)); }
  std::vector<WindowID> windowsOn(SpaceID space) {
    return server().copyWindowsOnSpace(space).value_or(std::vector<WindowID>{});
  }
  std::vector<SpaceID> spacesOf(WindowID window) {
    return server().copySpacesForWindows(7, std::vector{window}).value_or(std::vector<SpaceID>{});
  }
  std::optional<WindowInfo> info(WindowID window, WindowListOption option = WindowListOption::all);
  bool isOnScreen(WindowID window) {
    return info(window, WindowListOption::onScreenWithoutDesktopElements).has_value();
  }
  bool switchTo(SpaceID space) { return server().performBridged(SetCurrentSpace{identifier(), space}); }

  std::unique_ptr<WorldDriver> driver;
};

/// Counts what a signal announces.
class Listener {
 public:
  explicit Listener(Signal<>& signal) : connection_(signal.connect([this] { ++count_; })) {}
  /// Whether it was heard since the last call.
  bool heard() { return std::exchange(count_, 0) > 0; }
  [[nodiscard]] bool hears() const { return count_ > 0; }

 private:
  int count_ = 0;
  ScopedConnection connection_;
};

}  // namespace tessaspaces::contract
