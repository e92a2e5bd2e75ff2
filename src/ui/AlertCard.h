#pragma once

#include <QFrame>
#include <QTimer>
#include <functional>
#include <string>

#include "ui/PanelSystem.h"
#include "ui/Theme.h"

namespace tessaspaces {

/// A message over a panel. It goes with the next key or click, which does nothing else then, or after some seconds.
class AlertCard final : public QFrame, public PanelOverlay {
  Q_OBJECT

 public:
  /// `done` is called when it is to go.
  AlertCard(QWidget& panel, const Theme& theme, const std::string& title, const std::string& body,
            std::function<void()> done);

  bool pressedBeside() override;
  bool keyBeside(const QKeyEvent& event) override;

 protected:
  void mousePressEvent(QMouseEvent* event) override;

 private:
  std::function<void()> done_;
  QTimer timer_;
};

}  // namespace tessaspaces
