#include "app/LaunchWindowController.h"

#include <QCoreApplication>

#include "app/HotKeyClashes.h"
#include "app/LaunchWindow.h"
#include "app/Readiness.h"
#include "platform/Platform.h"
#include "settings/Log.h"
#include "settings/Notifications.h"

namespace tessaspaces {

LaunchWindowController& LaunchWindowController::shared() {
  static LaunchWindowController instance;
  return instance;
}

void LaunchWindowController::show() {
  ready_ = false;
  hotkeys_.reset();
  windowManager_ = platform().windowServer().windowManagerChanged.connect([this] {
    if (!ready_) check();
  });
  check();
  if (ready_) return;
  const auto verdict = Readiness::verdict(findings_);
  if (verdict == Readiness::Verdict::foreignSession) {
    Log::warning("LAUNCH: this is no session of its own X server; global keys cannot work here");
    present();
    return;
  }
  Log::info("LAUNCH: waiting for a window manager");
  platform().dispatch().after(grace, [this] {
    if (!ready_ && !window_) present();
  });
}

void LaunchWindowController::check() {
  findings_ = platform().examineSession();
  if (Readiness::verdict(findings_) == Readiness::Verdict::ready) {
    becomeReady();
  } else if (window_) {
    window_->refresh();
  }
}

void LaunchWindowController::continueAnyway() {
  if (ready_) return;
  Log::warning("LAUNCH: going on at the user's wish although not every check has passed");
  becomeReady();
}

void LaunchWindowController::refresh() {
  if (!window_) return;
  findings_ = platform().examineSession();
  window_->refresh();
}

void LaunchWindowController::becomeReady() {
  ready_ = true;
  windowManager_.reset();
  if (onReady) onReady();
  // Later, so that looking does not hold up the start.
  platform().dispatch().async([this] { lookAtHotKeys(); });
}

void LaunchWindowController::lookAtHotKeys() {
  // From now on a change of the settings can run into other programs' keys too. The delegate has registered
  // the new set by then, since it has observed for longer.
  hotkeys_ = Notifications::observe(Notifications::hotkeysChanged, [this] {
    if (!window_ && HotKeyClashes::any()) present();
  });
  const bool worthShowing = HotKeyClashes::any() || Readiness::configurationRow().state != State::ok;
  if (worthShowing) {
    present();
  } else if (window_) {
    window_->close();
  }
}

void LaunchWindowController::present() {
  if (!window_) window_ = new LaunchWindow(*this);
  window_->refresh();
  window_->present();
}

}  // namespace tessaspaces
