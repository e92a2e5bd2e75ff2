#pragma once

#include <QPointer>
#include <QWindow>

#include "base/KeyCombo.h"
#include "base/Signal.h"

class QKeyEvent;

namespace tessaspaces {

/// Something that lies over a panel and has the input to itself until it is gone: a menu, a field, a message.
class PanelOverlay {
 public:
  virtual ~PanelOverlay() = default;
  /// A button went down beside it, on any panel. True: that was all the press was for.
  virtual bool pressedBeside() = 0;
  /// A key that it did not take itself. True: as above.
  virtual bool keyBeside(const QKeyEvent& event) = 0;
};

/// What the panels need of the window system beyond what Qt does for them. One for all panels of the program, which it
/// outlives. Main thread.
class PanelSystem {
 public:
  virtual ~PanelSystem() = default;

  /// The window, which covers a screen, is on screen, or no longer: only in between it can be `covered`.
  virtual void opened(QWindow& window) = 0;
  virtual void closed(QWindow& window) = 0;

  /// All keys go to that window from now on, and all clicks to this program's windows, those beside them to this one.
  /// It may have them already, or another window of the program. False: another program has the keyboard or the
  /// pointer; nothing is changed then.
  virtual bool takeInput(QWindow& window) = 0;
  /// Lets go of what that window has taken; nothing when it is another that has it.
  virtual void giveInputBack(QWindow& window) = 0;
  /// Null: none of this program's panels has taken it.
  [[nodiscard]] virtual QWindow* inputHolder() const = 0;

  /// The key with its modifiers, in the product's codes: what hot keys are compared with.
  virtual KeyCombo comboOf(const QKeyEvent& event) = 0;

  /// Another program's window has come to lie over most of an open one and stays there, or the input that the window
  /// had is lost.
  Signal<QWindow*> covered;

  /// What has the input at the moment; null: the panels themselves.
  PanelOverlay* overlay = nullptr;
};

/// Knows no window system but Qt's: input is taken from this program's own windows alone, and nothing covers them.
class QtPanelSystem final : public PanelSystem {
 public:
  void opened(QWindow&) override {}
  void closed(QWindow&) override {}
  bool takeInput(QWindow& window) override;
  void giveInputBack(QWindow& window) override;
  [[nodiscard]] QWindow* inputHolder() const override { return holder_; }
  KeyCombo comboOf(const QKeyEvent& event) override;

 private:
  QPointer<QWindow> holder_;
};

}  // namespace tessaspaces
