#pragma once

#include <QElapsedTimer>
#include <QRegion>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "grid/GridPanelView.h"
#include "ui/Flight.h"
#include "ui/FrameClock.h"
#include "ui/ScenePainter.h"
#include "ui/ZoomAnimation.h"

namespace tessaspaces {

/// The window of a panel as a surface: covers a screen and shows scenes, zooms and flights on it. Its native window
/// exists from the start, so that opening it is nothing but painting and mapping. What the user does is others'
/// business (PanelEvents). Main thread.
class PanelCanvas final : public QWidget {
  Q_OBJECT

 public:
  PanelCanvas();
  ~PanelCanvas() override;

  /// As GridPanelView::open; without a zoom nothing is ever `finished`.
  void open(const ScreenRef& screen, const GridScene& scene, const std::optional<GridPanelView::Zoom>& zoom,
            std::function<void()> finished);
  /// As GridPanelView::close, for what is drawn here.
  void shut();
  /// Draws the scene at the end of this turn of the event loop, with all that came until then.
  void draw(const GridScene& scene);
  void zoom(const GridPanelView::Zoom& zoom, std::function<void()> finished);
  void fly(const GridScene::Window& window, const Rect& from, const Rect& to);

  [[nodiscard]] const GridScene& scene() const { return painter_.scene(); }
  [[nodiscard]] const Theme& theme() const { return theme_; }
  /// Device pixels per point of the scene.
  [[nodiscard]] double scale() const { return scale_; }
  /// Points of the scene from the widget's own coordinates, and back.
  [[nodiscard]] Point toScene(const QPointF& at) const;
  [[nodiscard]] QRect fromScene(const Rect& rect) const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;
  bool focusNextPrevChild(bool) override { return false; }
  [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

 private:
  void cover(const ScreenRef& screen, const GridScene& scene);
  /// Paints everything into what will be shown with the window.
  void paintAhead();
  void paint(QPainter& painter, const QRegion& region);
  void warm();
  void schedule(const QRegion& region);
  void flush();
  void begin(const GridPanelView::Zoom& zoom, std::function<void()> finished);
  void frame(double seconds, int missed);
  void flightFrame();
  void stopMoving();
  [[nodiscard]] QRegion toScene(const QRegion& region) const;
  [[nodiscard]] QRegion fromScene(const QRegion& region) const;
  [[nodiscard]] double rate() const;

  ScenePainter painter_;
  Theme theme_;
  double scale_ = 1;
  /// The widget's own units per point.
  double unit_ = 1;

  /// To be painted at the end of this turn.
  QRegion pending_;
  bool scheduled_ = false;
  /// What was painted before the window was shown is still right but for `stale_`, and Qt wants it painted again.
  bool ahead_ = false;
  QRegion stale_;

  FrameClock clock_;
  FrameCount count_;
  std::unique_ptr<ZoomAnimation> zoom_;
  GridPanelView::Zoom::Direction direction_{};
  double zoomSeconds_ = 0;
  double progress_ = 0;
  std::function<void()> finished_;
  struct Flying;
  std::vector<Flying> flights_;

  FrameCount dragCount_;
  QElapsedTimer sinceDrag_;  // valid: a change of what is carried is not on the screen yet
};

}  // namespace tessaspaces
