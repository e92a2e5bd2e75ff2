#pragma once

#include <QPointer>
#include <chrono>
#include <functional>
#include <vector>

#include "app/LaunchWindow.h"
#include "app/Readiness.h"
#include "base/Signal.h"
#include "platform/Session.h"

namespace tessaspaces {

/// The readiness screen: what the program needs before it can work, and the hot keys that others have.
/// It shows itself only when the user has to know something. Main thread.
class LaunchWindowController {
 public:
  /// How long a window manager may take to come up before the user hears of it: at login it often starts
  /// a little after this program.
  static constexpr std::chrono::milliseconds grace{1500};

  static LaunchWindowController& shared();

  /// Called once, when every check that counts has passed or the user goes on regardless.
  std::function<void()> onReady;

  /// Runs the checks. When they pass, `onReady` is called before this returns.
  void show();
  /// The user wants to go on although the session is not what it should be.
  void continueAnyway();

  /// The session or the hot keys have changed: an open window shows what is so now.
  void refresh();

  /// The user has come back to the program: shows the window if there is something to tell, known or not.
  void showAgain();

  [[nodiscard]] bool isReady() const { return ready_; }
  /// What the last check found.
  [[nodiscard]] const std::vector<SessionFinding>& findings() const { return findings_; }
  [[nodiscard]] Readiness::Verdict verdict() const { return Readiness::verdict(findings_); }
  [[nodiscard]] LaunchWindow* window() const { return window_; }

 private:
  void check();
  void becomeReady();
  void lookAtHotKeys();
  void present();
  void windowClosed(int result);

  bool ready_ = false;
  std::vector<SessionFinding> findings_;
  ScopedConnection windowManager_;
  ScopedConnection hotkeys_;
  QPointer<LaunchWindow> window_;
};

}  // namespace tessaspaces
