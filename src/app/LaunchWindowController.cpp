#include "app/LaunchWindowController.h"

#include <QCoreApplication>
#include <cstdlib>

#include "app/HotKeyClashes.h"
#include "app/LaunchWindow.h"
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
  if (verdict() == Readiness::Verdict::foreignSession) {
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

void LaunchWindowController::showAgain() {
  if (!ready_) check();
  if (!ready_ || HotKeyClashes::any()) present();
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
    if (!window_ && HotKeyClashes::anyNew()) present();
  });
  const bool worthShowing = HotKeyClashes::anyNew() || Readiness::configurationRow().state != State::ok;
  if (worthShowing) {
    present();
  } else if (window_) {
    window_->close();
  }
}

void LaunchWindowController::present() {
  if (!window_) {
    window_ = new LaunchWindow(*this);
    QObject::connect(window_, &QDialog::finished, [this](int result) { windowClosed(result); });
  }
  window_->refresh();
  window_->present();
}

void LaunchWindowController::windowClosed(int result) {
  if (ready_) {
    if (result == QDialog::Accepted) HotKeyClashes::accept();
  } else if (result == QDialog::Rejected && verdict() == Readiness::Verdict::foreignSession) {
    // No window manager is waited for here: without the window nothing would be left of the program to see.
    Log::info("LAUNCH: the user does not go on in this session");
    QCoreApplication::exit(EXIT_SUCCESS);
  }
}

}  // namespace tessaspaces
