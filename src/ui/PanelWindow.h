#pragma once

#include <QPointer>
#include <memory>

#include "base/Signal.h"
#include "grid/GridPanelView.h"
#include "ui/PanelSystem.h"

namespace tessaspaces {

class PanelCanvas;
class PanelEvents;

/// A panel's window with Qt: a PanelCanvas and what may lie over it, one thing at a time: a field for a name, a menu or
/// a message. Those are parts of the same window and have its input to themselves. Main thread.
class PanelWindow final : public GridPanelView {
 public:
  /// Both outlive it.
  PanelWindow(GridPanelInput& input, PanelSystem& system);
  ~PanelWindow() override;

  void open(const ScreenRef& screen, const GridScene& scene, const std::optional<Zoom>& zoom,
            std::function<void()> finished) override;
  void close() override;
  [[nodiscard]] bool isOpen() const override;
  bool takeKeyboard() override;
  void giveKeyboardBack() override;

  void show(const GridScene& scene) override;
  void animate(const Zoom& zoom, std::function<void()> finished) override;
  void flyBack(const GridScene::Window& window, const Rect& from, const Rect& to) override;

  void editName(const Rect& tile, const std::string& name,
                std::function<void(std::optional<std::string>)> done) override;
  void openMenu(Point at, std::vector<GridMenuItem> items) override;
  void alert(const std::string& title, const std::string& text) override;
  [[nodiscard]] double scale() const override;

 private:
  /// Takes away what lies over the panel, as a change of mind.
  void clear();
  void lay(QWidget* widget, PanelOverlay* overlay);
  /// Gives the input back to where `lay` found it; what lay over the panel goes once nobody uses it any more.
  void lift();

  GridPanelInput& input_;
  PanelSystem& system_;
  std::unique_ptr<PanelCanvas> canvas_;
  std::unique_ptr<PanelEvents> events_;
  QPointer<QWidget> over_;
  PanelOverlay* overlay_ = nullptr;
  /// Which panel had the input before, when that was another one.
  QPointer<QWindow> borrowedFrom_;
  ScopedConnection covered_;
};

/// Makes panel windows; `system` outlives them.
[[nodiscard]] MakeGridPanelView panelWindows(PanelSystem& system);

}  // namespace tessaspaces
