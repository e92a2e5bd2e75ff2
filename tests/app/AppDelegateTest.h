#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/AppDelegate.h"
#include "app/LaunchWindowController.h"
#include "settings/Notifications.h"
#include "support/CoreTest.h"
#include "ui/Text.h"

namespace tessaspaces {

/// Everything that the shell asks of the parts that it drives, in order.
using Calls = std::vector<std::string>;

class FakeGrid final : public OverviewGrid {
 public:
  explicit FakeGrid(Calls& calls) : calls_(calls) { calls_.emplace_back("made"); }
  [[nodiscard]] bool isVisible() const override { return visible_; }
  void show(const ScreenRef& focusedOn) override {
    visible_ = true;
    calls_.push_back("show " + focusedOn->name);
  }
  void closeAnimated() override {
    visible_ = false;
    calls_.emplace_back("close");
  }
  void toggleGridView() override { calls_.emplace_back("toggle"); }
  void reload() override { calls_.emplace_back("reload"); }

 private:
  Calls& calls_;
  bool visible_ = false;
};

class FakeSettings final : public SettingsWindow {
 public:
  void show() override { ++shown; }
  int shown = 0;
};

class FakeUpdates final : public UpdateController {
 public:
  explicit FakeUpdates(Calls& calls) : calls_(calls) {}
  void checkOnLaunchIfEnabled() override { calls_.emplace_back("check on launch"); }
  void checkForUpdates() override { calls_.emplace_back("check"); }

 private:
  Calls& calls_;
};

/// The shell on two simulated displays, with fakes for the parts that it drives.
class AppDelegateTest : public CoreTest {
 protected:
  AppDelegateTest() {
    start("left 1000x800 | A* B C D ; right 1000x800 | E*");
    rest();
  }
  ~AppDelegateTest() override {
    delegate.reset();
    if (auto* window = LaunchWindowController::shared().window()) delete window;
  }

  void rest() { world().setPointer({500, 400}); }
  AppParts parts() {
    return {[this] { return std::make_unique<FakeGrid>(calls); }, &settings, &updates};
  }
  void launch(AppParts with = {}) {
    delegate = std::make_unique<AppDelegate>(std::move(with));
    delegate->applicationDidFinishLaunching();
    sim->time().runUntilIdle();
  }
  void change(std::string_view notification) {
    Notifications::post(notification);
    sim->time().runUntilIdle();
  }
  Calls titles() {
    Calls all;
    for (const QAction* action : delegate->statusItem()->menu().actions()) {
      all.push_back(action->isSeparator() ? "-" : action->text().toStdString());
    }
    return all;
  }
  void trigger(const char* titleKey) {
    for (QAction* action : delegate->statusItem()->menu().actions()) {
      if (action->text() == localized(titleKey)) return action->trigger();
    }
    ADD_FAILURE() << "no menu item " << titleKey;
  }
  LaunchWindow* launchWindow() { return LaunchWindowController::shared().window(); }

  Calls calls;
  FakeSettings settings;
  FakeUpdates updates{calls};
  std::unique_ptr<AppDelegate> delegate;
};

}  // namespace tessaspaces
