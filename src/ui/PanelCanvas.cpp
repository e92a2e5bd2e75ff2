#include "ui/PanelCanvas.h"

#include <QBackingStore>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "grid/ScreenGeometry.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

const auto endOfTurn = static_cast<QEvent::Type>(QEvent::registerEventType());

/// The same monitor as Qt knows it; null when it knows none such.
QScreen* screenOf(const Screen& screen) {
  const auto all = QGuiApplication::screens();
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const QScreen* each) { return each->name() == text(screen.name); });
  return found == all.end() ? nullptr : *found;
}

QRect whole(const Rect& rect) {
  return {static_cast<int>(std::lround(rect.x)), static_cast<int>(std::lround(rect.y)),
          static_cast<int>(std::lround(rect.width)), static_cast<int>(std::lround(rect.height))};
}

QRegion scaled(const QRegion& region, double factor) {
  if (factor == 1) return region;
  QRegion result;
  for (const QRect& rect : region) {
    result +=
        QRectF(rect.x() * factor, rect.y() * factor, rect.width() * factor, rect.height() * factor).toAlignedRect();
  }
  return result;
}

}  // namespace

struct PanelCanvas::Flying {
  Flight flight;
  QElapsedTimer since;
  double progress = 0;
};

PanelCanvas::PanelCanvas()
    : theme_(Theme::fromPalette(QGuiApplication::palette())),
      clock_([this](double seconds, int missed) { frame(seconds, missed); }) {
  setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint | Qt::WindowStaysOnTopHint |
                 Qt::NoDropShadowWindowHint);
  setAttribute(Qt::WA_NativeWindow);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_NoSystemBackground);
  setAttribute(Qt::WA_QuitOnClose, false);
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_InputMethodEnabled);
  setAttribute(Qt::WA_AlwaysShowToolTips, false);
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  if (const QScreen* primary = QGuiApplication::primaryScreen()) setGeometry(primary->geometry());
  winId();
  setFocus();
  // What the first opening needs is made while there is nothing else to do.
  QTimer::singleShot(0, this, [this] { warm(); });
}

PanelCanvas::~PanelCanvas() = default;

Point PanelCanvas::toScene(const QPointF& at) const {
  return {at.x() / unit_, at.y() / unit_};
}

QRect PanelCanvas::fromScene(const Rect& rect) const {
  return QRectF(rect.x * unit_, rect.y * unit_, rect.width * unit_, rect.height * unit_).toAlignedRect();
}

QRegion PanelCanvas::toScene(const QRegion& region) const {
  return scaled(region, 1 / unit_);
}

QRegion PanelCanvas::fromScene(const QRegion& region) const {
  return scaled(region, unit_);
}

double PanelCanvas::rate() const {
  return screen() != nullptr ? screen()->refreshRate() : 60;
}

void PanelCanvas::cover(const ScreenRef& screen, const GridScene& scene) {
  QScreen* monitor = screen ? screenOf(*screen) : nullptr;
  QRect area = monitor != nullptr ? monitor->geometry() : geometry();
  if (monitor == nullptr && screen) area = whole(ScreenGeometry::flipped(screen->frame));
  if (monitor != nullptr && windowHandle()->screen() != monitor) windowHandle()->setScreen(monitor);
  if (geometry() != area) setGeometry(area);
  // Qt's unit, the scene's and the device's may be three different ones.
  unit_ = scene.bounds.width > 0 ? width() / scene.bounds.width : 1;
  scale_ = unit_ * devicePixelRatioF();
}

void PanelCanvas::open(const ScreenRef& screen, const GridScene& scene, const std::optional<GridPanelView::Zoom>& zoom,
                       std::function<void()> finished) {
  stopMoving();
  pending_ = {};
  cover(screen, scene);
  theme_ = Theme::fromPalette(QGuiApplication::palette());
  painter_.setScene(scene, scale_, theme_);
  setCursor(Qt::ArrowCursor);
  setFocus();
  if (zoom) begin(*zoom, std::move(finished));

  paintAhead();
  raise();
  QWidget::show();
  backingStore()->flush(rect(), windowHandle());
  // The first frame counts from when it could be seen.
  if (zoom) clock_.start(rate());
}

void PanelCanvas::shut() {
  stopMoving();
  pending_ = {};
  if (isVisible()) hide();
}

void PanelCanvas::warm() {
  if (isVisible() || scene().bounds.width > 0) return;
  GridScene sample;
  sample.bounds = {static_cast<double>(width()), static_cast<double>(height())};
  sample.header = {18, 0, sample.bounds.width - 36, 44};
  sample.title = sample.hint = sample.filter = "Aa";
  GridScene::Tile tile;
  tile.rect = tile.content = {100, 100, sample.bounds.width / 4, sample.bounds.height / 4};
  tile.label = "Aa";
  tile.number = 1;
  tile.current = tile.selected = true;
  sample.tiles.push_back(tile);
  scale_ = devicePixelRatioF();
  painter_.setScene(sample, scale_, theme_);
  paintAhead();
  ahead_ = false;
}

void PanelCanvas::paintAhead() {
  QBackingStore* store = backingStore();
  if (store->size() != size()) store->resize(size());
  store->beginPaint(rect());
  {
    QPainter painter(store->paintDevice());
    paint(painter, rect());
  }
  store->endPaint();
  ahead_ = true;
  stale_ = {};
}

void PanelCanvas::paint(QPainter& painter, const QRegion& region) {
  if (unit_ != 1) painter.scale(unit_, unit_);
  if (zoom_) {
    zoom_->paint(painter, progress_);
    return;
  }
  painter_.paint(painter, toScene(region));
  for (const Flying& flying : flights_) flying.flight.paint(painter, painter_, flying.progress);
}

void PanelCanvas::paintEvent(QPaintEvent* event) {
  QRegion region = event->region();
  // When the window appears Qt wants all of it, which is there already.
  if (std::exchange(ahead_, false)) region &= stale_;
  stale_ = {};
  if (region.isEmpty()) return;
  QPainter painter(this);
  painter.setClipRegion(region);
  paint(painter, region);
}

void PanelCanvas::schedule(const QRegion& region) {
  pending_ += region;
  if (pending_.isEmpty() || std::exchange(scheduled_, true)) return;
  QCoreApplication::postEvent(this, new QEvent(endOfTurn), Qt::LowEventPriority);
}

void PanelCanvas::flush() {
  const QRegion region = std::exchange(pending_, {});
  if (!isVisible() || region.isEmpty() || zoom_) return;
  if (ahead_) stale_ += region;
  repaint(region);
  if (!sinceDrag_.isValid()) return;
  const double took = static_cast<double>(sinceDrag_.nsecsElapsed()) / 1e6;
  sinceDrag_.invalidate();
  dragCount_.shown(static_cast<int>(took * rate() / 1000), took);
}

bool PanelCanvas::event(QEvent* event) {
  if (event->type() == endOfTurn) {
    scheduled_ = false;
    flush();
    return true;
  }
  if (event->type() == QEvent::ApplicationPaletteChange && isVisible()) {
    theme_ = Theme::fromPalette(QGuiApplication::palette());
    schedule(fromScene(painter_.setScene(GridScene(scene()), scale_, theme_)));
  }
  return QWidget::event(event);
}

QVariant PanelCanvas::inputMethodQuery(Qt::InputMethodQuery query) const {
  // What is being composed is shown where the filter is.
  if (query == Qt::ImCursorRectangle) return fromScene(scene().header);
  return QWidget::inputMethodQuery(query);
}

void PanelCanvas::draw(const GridScene& scene) {
  if (!isVisible()) return;
  const bool carriedBefore = painter_.scene().carried.has_value();
  const QRegion changed = painter_.setScene(scene, scale_, theme_);
  if (scene.carried && !sinceDrag_.isValid() && !changed.isEmpty()) sinceDrag_.start();
  if (carriedBefore != scene.carried.has_value()) {
    setCursor(scene.carried ? Qt::ClosedHandCursor : Qt::ArrowCursor);
    if (carriedBefore) dragCount_.end("drag");
  }
  if (!zoom_) {
    schedule(fromScene(changed));
  } else if (!clock_.isRunning()) {
    // The panel is used on after having grown into a tile.
    zoom_.reset();
    schedule(rect());
  }
}

void PanelCanvas::zoom(const GridPanelView::Zoom& zoom, std::function<void()> finished) {
  if (!isVisible()) return;
  begin(zoom, std::move(finished));
  clock_.start(rate());
}

void PanelCanvas::begin(const GridPanelView::Zoom& zoom, std::function<void()> finished) {
  stopMoving();
  finished_ = std::move(finished);
  zoom_ = std::make_unique<ZoomAnimation>(painter_, zoom);
  direction_ = zoom.direction;
  zoomSeconds_ = std::max(0.001, std::chrono::duration<double>(zoom.duration).count());
  progress_ = 0;
}

void PanelCanvas::frame(double seconds, int missed) {
  if (!zoom_) {
    flightFrame();
    return;
  }
  progress_ = std::min(1.0, seconds / zoomSeconds_);
  const bool last = progress_ >= 1;
  // A panel that has grown into a tile goes on showing that until it is told otherwise.
  if (last && direction_ == GridPanelView::Zoom::Direction::out) zoom_.reset();
  if (ahead_) stale_ = rect();
  repaint();
  count_.shown(missed, (clock_.seconds() - seconds) * 1000);
  if (!last) return;
  clock_.stop();
  count_.end("zoom");
  if (auto finished = std::exchange(finished_, {})) finished();
}

void PanelCanvas::fly(const GridScene::Window& window, const Rect& from, const Rect& to) {
  if (!isVisible() || zoom_) return;
  flights_.push_back({Flight(window, from, to), {}, 0});
  flights_.back().since.start();
  // It begins where the hand let go, before anything shows without it.
  pending_ += fromScene(flights_.back().flight.bounds(painter_, 0));
  flush();
  if (!clock_.isRunning()) clock_.start(rate());
}

void PanelCanvas::flightFrame() {
  QRegion touched;
  for (Flying& flying : flights_) {
    touched += flying.flight.bounds(painter_, flying.progress);
    flying.progress = static_cast<double>(flying.since.nsecsElapsed()) / 1e9 / Flight::seconds;
    if (flying.progress < 1) touched += flying.flight.bounds(painter_, flying.progress);
  }
  std::erase_if(flights_, [](const Flying& flying) { return flying.progress >= 1; });
  if (flights_.empty()) clock_.stop();
  pending_ += fromScene(touched);
  flush();
}

void PanelCanvas::stopMoving() {
  clock_.stop();
  zoom_.reset();
  finished_ = {};
  flights_.clear();
  sinceDrag_.invalidate();
  count_.begin();
  dragCount_.end("drag");
}

}  // namespace tessaspaces
