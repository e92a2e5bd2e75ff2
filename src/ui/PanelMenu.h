#pragma once

#include <QMenu>
#include <functional>
#include <vector>

#include "grid/GridPanelView.h"
#include "ui/PanelSystem.h"
#include "ui/Theme.h"

namespace tessaspaces {

/// A menu over a panel. It is a part of the panel's window: a window of its own would take keyboard and pointer from
/// the panel and let go of them in the end, and what is typed in between would go to whatever lies underneath.
class PanelMenu final : public QMenu, public PanelOverlay {
  Q_OBJECT

 public:
  /// At that point of the panel, or as near as it fits. `done` is called when it is to go, before what was chosen is
  /// done.
  PanelMenu(QWidget& panel, const Theme& theme, QPoint at, std::vector<GridMenuItem> items, std::function<void()> done);

  bool pressedBeside() override;
  bool keyBeside(const QKeyEvent&) override { return true; }

 protected:
  void wheelEvent(QWheelEvent* event) override;

 private:
  void finish();
  /// Moves a menu that is higher than the panel so that the strip from `top` to `bottom` of it is seen.
  void reveal(int top, int bottom);

  std::function<void()> done_;
};

}  // namespace tessaspaces
