#include "ui/PanelWindow.h"

#include <algorithm>
#include <utility>

#include "ui/AlertCard.h"
#include "ui/NameEditor.h"
#include "ui/PanelAccessible.h"
#include "ui/PanelCanvas.h"
#include "ui/PanelEvents.h"
#include "ui/PanelMenu.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

constexpr int fieldHeight = 34;
constexpr int leastFieldWidth = 140;
constexpr int mostFieldWidth = 320;

/// Where the name stands under a tile, with room to type.
QRect fieldOver(const QRect& tile, const QRect& panel) {
  const int width = std::clamp(tile.width() - 24, leastFieldWidth, mostFieldWidth);
  QRect field(tile.center().x() - width / 2, tile.bottom() - fieldHeight / 2, width, fieldHeight);
  field.moveLeft(std::clamp(field.left(), 4, std::max(4, panel.width() - width - 4)));
  field.moveTop(std::clamp(field.top(), 4, std::max(4, panel.height() - fieldHeight - 4)));
  return field;
}

}  // namespace

PanelWindow::PanelWindow(GridPanelInput& input, PanelSystem& system)
    : input_(input),
      system_(system),
      canvas_(std::make_unique<PanelCanvas>()),
      events_(std::make_unique<PanelEvents>(*canvas_, system, input)) {
  PanelAccessible::install();
  covered_ = system.covered.connect([this](QWindow* window) {
    if (isOpen() && window == canvas_->windowHandle()) input_.covered();
  });
}

PanelWindow::~PanelWindow() {
  close();
}

void PanelWindow::open(const ScreenRef& screen, const GridScene& scene, const std::optional<Zoom>& zoom,
                       std::function<void()> finished) {
  clear();
  events_->reset();
  canvas_->setWindowTitle(text(scene.title));
  canvas_->setAccessibleName(localized("grid.spoken.panel", scene.title));
  const bool again = isOpen();
  canvas_->open(screen, scene, zoom, zoom ? finished : std::function<void()>());
  if (!again) system_.opened(*canvas_->windowHandle());
  PanelAccessible::changed(*canvas_);
  if (!zoom && finished) finished();
}

void PanelWindow::close() {
  clear();
  if (!isOpen()) return;
  system_.closed(*canvas_->windowHandle());
  canvas_->shut();
  system_.giveInputBack(*canvas_->windowHandle());
}

bool PanelWindow::isOpen() const {
  return canvas_->isVisible();
}

bool PanelWindow::takeKeyboard() {
  return isOpen() && system_.takeInput(*canvas_->windowHandle());
}

void PanelWindow::giveKeyboardBack() {
  system_.giveInputBack(*canvas_->windowHandle());
}

void PanelWindow::show(const GridScene& scene) {
  if (!isOpen()) return;
  canvas_->draw(scene);
  PanelAccessible::changed(*canvas_);
}

void PanelWindow::animate(const Zoom& zoom, std::function<void()> finished) {
  clear();
  canvas_->zoom(zoom, std::move(finished));
}

void PanelWindow::flyBack(const GridScene::Window& window, const Rect& from, const Rect& to) {
  canvas_->fly(window, from, to);
}

void PanelWindow::editName(const Rect& tile, const std::string& name,
                           std::function<void(std::optional<std::string>)> done) {
  clear();
  if (!isOpen()) {
    done(std::nullopt);
    return;
  }
  auto* editor = new NameEditor(*canvas_, canvas_->theme(), name,
                                [this, done = std::move(done)](std::optional<std::string> answer) {
                                  lift();
                                  done(std::move(answer));
                                });
  editor->setGeometry(fieldOver(canvas_->fromScene(tile), canvas_->rect()));
  editor->show();
  lay(editor, editor);
}

void PanelWindow::openMenu(Point at, std::vector<GridMenuItem> items) {
  clear();
  if (!isOpen() || items.empty()) return;
  const QPoint corner = canvas_->fromScene(Rect{at.x, at.y, 0, 0}).topLeft();
  auto* menu = new PanelMenu(*canvas_, canvas_->theme(), corner, std::move(items), [this] { lift(); });
  lay(menu, menu);
}

void PanelWindow::alert(const std::string& title, const std::string& text) {
  clear();
  if (!isOpen()) return;
  auto* card = new AlertCard(*canvas_, canvas_->theme(), title, text, [this] { lift(); });
  lay(card, card);
}

double PanelWindow::scale() const {
  return canvas_->scale();
}

void PanelWindow::clear() {
  // A field tells that it goes, and whoever is told may lay the next one over the panel.
  if (auto* editor = qobject_cast<NameEditor*>(over_.data())) editor->finish(false);
  lift();
}

void PanelWindow::lay(QWidget* widget, PanelOverlay* overlay) {
  over_ = widget;
  overlay_ = system_.overlay = overlay;
  QWindow* holder = system_.inputHolder();
  borrowedFrom_ = nullptr;
  if (holder != nullptr && holder != canvas_->windowHandle() && system_.takeInput(*canvas_->windowHandle())) {
    borrowedFrom_ = holder;
  }
  widget->setFocus();
}

void PanelWindow::lift() {
  if (over_ == nullptr) return;
  if (system_.overlay == overlay_) system_.overlay = nullptr;
  overlay_ = nullptr;
  QWidget* widget = over_;
  over_ = nullptr;
  widget->hide();
  widget->deleteLater();
  canvas_->setFocus();
  if (borrowedFrom_ != nullptr && borrowedFrom_->isVisible()) system_.takeInput(*borrowedFrom_);
  borrowedFrom_ = nullptr;
}

MakeGridPanelView panelWindows(PanelSystem& system) {
  return [&system](GridPanelInput& input) { return std::make_unique<PanelWindow>(input, system); };
}

}  // namespace tessaspaces
