#pragma once

#include <QObject>

#include "grid/GridPanelView.h"
#include "ui/PanelSystem.h"

class QKeyEvent;
class QMouseEvent;

namespace tessaspaces {

class PanelCanvas;

/// Tells a panel's input what the user does in its window. What lies over the panel (PanelSystem::overlay) comes first.
/// Main thread.
class PanelEvents final : public QObject {
 public:
  /// All of them outlive it.
  PanelEvents(PanelCanvas& canvas, PanelSystem& system, GridPanelInput& input);

  /// As for a new opening: no button is down.
  void reset() { down_ = Qt::NoButton; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void pressed(const QMouseEvent& event);
  void released(const QMouseEvent& event);
  void key(const QKeyEvent& event);

  PanelCanvas& canvas_;
  PanelSystem& system_;
  GridPanelInput& input_;
  /// Buttons whose press the input was told of; it hears of no other's release.
  Qt::MouseButtons down_ = Qt::NoButton;
};

}  // namespace tessaspaces
