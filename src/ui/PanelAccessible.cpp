#include "ui/PanelAccessible.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QPointer>
#include <algorithm>
#include <compare>
#include <map>
#include <memory>
#include <vector>

#include "ui/PanelCanvas.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

/// Names a part of a scene from one scene to the next: a tile, one of its windows, or (no desktop) the plus place.
struct Part {
  SpaceID space = 0;
  WindowID window = 0;
  friend auto operator<=>(const Part&, const Part&) = default;
};

class PartInterface;

class PanelInterface final : public QAccessibleWidget {
 public:
  explicit PanelInterface(PanelCanvas* canvas) : QAccessibleWidget(canvas, QAccessible::List), canvas_(*canvas) {}
  ~PanelInterface() override {
    for (const auto& [part, id] : known_) QAccessible::deleteAccessibleInterface(id);
  }

  [[nodiscard]] PanelCanvas& canvas() const { return canvas_; }
  [[nodiscard]] const GridScene& scene() const { return canvas_.scene(); }
  QAccessibleInterface* part(const Part& part);

  [[nodiscard]] int childCount() const override { return own() + QAccessibleWidget::childCount(); }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    if (index >= own()) return QAccessibleWidget::child(index - own());
    return index < 0 ? nullptr : const_cast<PanelInterface*>(this)->part(partAt(index));
  }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
  [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
  [[nodiscard]] QAccessibleInterface* focusChild() const override;

  /// Forgets the parts that have gone; the one that is selected, if any.
  QAccessibleInterface* refresh();

 private:
  [[nodiscard]] int own() const { return static_cast<int>(scene().tiles.size()) + (scene().plus ? 1 : 0); }
  [[nodiscard]] Part partAt(int index) const {
    const auto at = static_cast<std::size_t>(index);
    return at < scene().tiles.size() ? Part{scene().tiles[at].space, 0} : Part{};
  }

  PanelCanvas& canvas_;
  std::map<Part, QAccessible::Id> known_;
};

class PartInterface final : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  PartInterface(PanelInterface& panel, Part part) : panel_(panel), canvas_(&panel.canvas()), part_(part) {}

  [[nodiscard]] const Part& part() const { return part_; }

  [[nodiscard]] bool isValid() const override { return canvas_ != nullptr && (isPlus() ? plus() : tile()) != nullptr; }
  [[nodiscard]] QObject* object() const override { return nullptr; }
  [[nodiscard]] QAccessibleInterface* parent() const override {
    return part_.window == 0 ? static_cast<QAccessibleInterface*>(&panel_) : panel_.part({part_.space, 0});
  }
  [[nodiscard]] int childCount() const override {
    return tile() == nullptr || part_.window != 0 ? 0 : static_cast<int>(tile()->windows.size());
  }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= childCount()) return nullptr;
    return panel_.part({part_.space, tile()->windows[static_cast<std::size_t>(index)].id});
  }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
    for (int i = 0; i < childCount(); ++i) {
      if (this->child(i) == child) return i;
    }
    return -1;
  }
  [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
    for (int i = 0; i < childCount(); ++i) {
      if (child(i)->rect().contains(x, y)) return child(i);
    }
    return nullptr;
  }

  [[nodiscard]] QString text(QAccessible::Text what) const override;
  void setText(QAccessible::Text, const QString&) override {}
  [[nodiscard]] QRect rect() const override {
    if (!isValid()) return {};
    const QRect inside = canvas_->fromScene(place());
    return {canvas_->mapToGlobal(inside.topLeft()), inside.size()};
  }
  [[nodiscard]] QAccessible::Role role() const override {
    return isPlus() || part_.window != 0 ? QAccessible::Button : QAccessible::ListItem;
  }
  [[nodiscard]] QAccessible::State state() const override;

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  [[nodiscard]] QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
  void doAction(const QString& action) override;
  [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

 private:
  [[nodiscard]] bool isPlus() const { return part_ == Part{}; }
  [[nodiscard]] const void* plus() const { return panel_.scene().plus ? &*panel_.scene().plus : nullptr; }
  [[nodiscard]] const GridScene::Tile* tile() const {
    if (canvas_ == nullptr) return nullptr;
    const auto& tiles = panel_.scene().tiles;
    const auto found =
        std::find_if(tiles.begin(), tiles.end(), [&](const auto& each) { return each.space == part_.space; });
    if (found == tiles.end() || (part_.window != 0 && windowIn(*found) == nullptr)) return nullptr;
    return &*found;
  }
  [[nodiscard]] const GridScene::Window* windowIn(const GridScene::Tile& tile) const {
    const auto found = std::find_if(tile.windows.begin(), tile.windows.end(),
                                    [&](const auto& each) { return each.id == part_.window; });
    return found == tile.windows.end() ? nullptr : &*found;
  }
  [[nodiscard]] Rect place() const {
    if (isPlus()) return panel_.scene().plus->rect;
    return part_.window == 0 ? tile()->rect : windowIn(*tile())->rect;
  }
  [[nodiscard]] Point pressPoint() const;

  PanelInterface& panel_;
  QPointer<PanelCanvas> canvas_;
  Part part_;
};

QString PartInterface::text(QAccessible::Text what) const {
  if (!isValid()) return {};
  if (isPlus()) return what == QAccessible::Name ? localized("grid.spoken.addDesktop") : QString();
  const GridScene::Window* window = windowIn(*tile());
  if (what == QAccessible::Name) {
    if (window == nullptr) return tessaspaces::text(tile()->label);
    return tessaspaces::text(window->title.empty() ? window->application : window->title);
  }
  if (what != QAccessible::Description) return {};
  if (window != nullptr) return tessaspaces::text(window->application);
  QStringList said;
  if (tile()->current) said += localized("grid.spoken.current");
  if (!tile()->fullScreenApplication.empty()) said += tessaspaces::text(tile()->fullScreenApplication);
  return said.join(QStringLiteral(", "));
}

QAccessible::State PartInterface::state() const {
  QAccessible::State state;
  if (!isValid() || !canvas_->isVisible()) {
    state.invisible = 1;
    return state;
  }
  state.focusable = 1;
  state.selectable = 1;
  if (isPlus()) {
    state.selected = state.focused = panel_.scene().plus->selected;
    state.busy = panel_.scene().plus->busy;
    state.hotTracked = panel_.scene().plus->hovered;
  } else if (const GridScene::Window* window = windowIn(*tile())) {
    state.selected = window->look == GridScene::Window::Look::best;
    state.hotTracked = window->look == GridScene::Window::Look::hovered;
    state.offscreen = window->rect.isEmpty();
  } else {
    state.selected = tile()->selected;
    state.focused = tile()->selected && panel_.scene().keyboard;
    state.active = tile()->current;
    state.hotTracked = tile()->hovered;
  }
  return state;
}

Point PartInterface::pressPoint() const {
  const Rect area = place();
  if (isPlus()) return area.center();
  // Windows in front of what is meant may cover its middle.
  const auto covered = [&](Point at) {
    for (const auto& window : tile()->windows) {
      if (window.id == part_.window) return false;
      if (window.rect.contains(at)) return true;
    }
    return false;
  };
  if (!covered(area.center())) return area.center();
  constexpr int steps = 16;
  for (int row = 0; row < steps; ++row) {
    for (int column = 0; column < steps; ++column) {
      const Point at{area.x + area.width * (column + 0.5) / steps, area.y + area.height * (row + 0.5) / steps};
      if (!covered(at)) return at;
    }
  }
  return area.center();
}

void PartInterface::doAction(const QString& action) {
  if (!isValid() || !canvas_->isVisible()) return;
  const Point at = pressPoint();
  const QPointF local = QRectF(canvas_->fromScene(Rect{at.x, at.y, 1, 1})).center();
  const auto send = [canvas = canvas_, local](QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons held) {
    if (canvas == nullptr) return;
    QMouseEvent event(type, local, canvas->mapToGlobal(local), button, held, Qt::NoModifier);
    QCoreApplication::sendEvent(canvas, &event);
  };
  send(QEvent::MouseMove, Qt::NoButton, Qt::NoButton);
  if (action != pressAction()) return;
  send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
  send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
}

QAccessibleInterface* PanelInterface::part(const Part& part) {
  const auto found = known_.find(part);
  if (found != known_.end()) return QAccessible::accessibleInterface(found->second);
  auto* made = new PartInterface(*this, part);
  known_.emplace(part, QAccessible::registerAccessibleInterface(made));
  return made;
}

int PanelInterface::indexOfChild(const QAccessibleInterface* child) const {
  for (int i = 0; i < own(); ++i) {
    if (this->child(i) == child) return i;
  }
  const int index = QAccessibleWidget::indexOfChild(child);
  return index < 0 ? -1 : index + own();
}

QAccessibleInterface* PanelInterface::childAt(int x, int y) const {
  if (auto* over = QAccessibleWidget::childAt(x, y)) return over;
  for (int i = 0; i < own(); ++i) {
    if (child(i)->rect().contains(x, y)) return child(i);
  }
  return nullptr;
}

QAccessibleInterface* PanelInterface::focusChild() const {
  for (int i = 0; i < own(); ++i) {
    if (child(i)->state().focused) return child(i);
  }
  return QAccessibleWidget::focusChild();
}

QAccessibleInterface* PanelInterface::refresh() {
  std::erase_if(known_, [](const auto& entry) {
    const QAccessibleInterface* part = QAccessible::accessibleInterface(entry.second);
    if (part != nullptr && part->isValid()) return false;
    QAccessible::deleteAccessibleInterface(entry.second);
    return true;
  });
  QAccessibleInterface* focused = focusChild();
  return focused;
}

QAccessibleInterface* make(const QString& name, QObject* object) {
  if (name != QLatin1String("tessaspaces::PanelCanvas")) return nullptr;
  return new PanelInterface(qobject_cast<PanelCanvas*>(object));
}

}  // namespace

void PanelAccessible::install() {
  QAccessible::installFactory(make);  // knows its own
}

void PanelAccessible::changed(PanelCanvas& canvas) {
  if (!QAccessible::isActive()) return;
  auto* panel = dynamic_cast<PanelInterface*>(QAccessible::queryAccessibleInterface(&canvas));
  QAccessibleInterface* focused = panel != nullptr ? panel->refresh() : nullptr;
  if (focused == nullptr) return;
  static QAccessible::Id last = 0;
  const QAccessible::Id now = QAccessible::uniqueId(focused);
  if (now == last) return;
  last = now;
  QAccessibleEvent event(focused, QAccessible::Focus);
  QAccessible::updateAccessibility(&event);
}

}  // namespace tessaspaces
