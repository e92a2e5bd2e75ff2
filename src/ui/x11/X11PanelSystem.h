#pragma once

#include <QAbstractNativeEventFilter>
#include <memory>
#include <unordered_map>

#include "platform/x11/KeyboardMap.h"
#include "ui/PanelSystem.h"
#include "ui/x11/CoverWatch.h"
#include "ui/x11/InputGrab.h"

namespace tessaspaces {

/// Panels on an X display, on Qt's own connection to it.
class X11PanelSystem final : public PanelSystem, private QAbstractNativeEventFilter {
 public:
  /// Null when Qt does not run on X.
  static std::unique_ptr<X11PanelSystem> make();
  ~X11PanelSystem() override;

  void opened(QWindow& window) override { cover_.add(window); }
  void closed(QWindow& window) override { cover_.remove(window); }
  bool takeInput(QWindow& window) override { return grab_.take(window); }
  void giveInputBack(QWindow& window) override { grab_.giveBack(window); }
  [[nodiscard]] QWindow* inputHolder() const override { return grab_.holder(); }
  /// By the place of the key and the modifiers' bits, exactly as the hot keys are registered.
  KeyCombo comboOf(const QKeyEvent& event) override;

 private:
  explicit X11PanelSystem(xcb_connection_t* connection);
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
  void readKeyboard();
  void inputLost();

  xcb_connection_t* connection_;
  QObject context_;  // of what is put off
  InputGrab grab_;
  CoverWatch cover_;
  ScopedConnection coverSeen_;
  /// Of the keyboard as it is mapped; empty: not read yet, or no longer right.
  std::optional<KeyboardMap> keyboard_;
  std::unordered_map<std::uint32_t, std::uint32_t> keyCodes_;  // by X keycode
  std::uint8_t xkbEvent_ = 0;
};

}  // namespace tessaspaces
