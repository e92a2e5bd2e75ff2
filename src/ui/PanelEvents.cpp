#include "ui/PanelEvents.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <optional>

#include "ui/KeyMapping.h"
#include "ui/PanelCanvas.h"

namespace tessaspaces {
namespace {

std::optional<GridButton> buttonOf(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton: return GridButton::left;
    case Qt::MiddleButton: return GridButton::middle;
    case Qt::RightButton: return GridButton::right;
    default: return std::nullopt;
  }
}

}  // namespace

PanelEvents::PanelEvents(PanelCanvas& canvas, PanelSystem& system, GridPanelInput& input)
    : canvas_(canvas), system_(system), input_(input) {
  canvas.installEventFilter(this);
}

// The input may close the panel, or take it away altogether: nothing is touched once it has been told.
bool PanelEvents::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::Leave:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::InputMethod:
      // What was under way when the panel closed.
      if (!canvas_.isVisible()) return true;
      break;
    default: return false;
  }
  switch (event->type()) {
    case QEvent::MouseMove: input_.pointerMoved(canvas_.toScene(static_cast<QMouseEvent*>(event)->position())); break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: pressed(*static_cast<QMouseEvent*>(event)); break;
    case QEvent::MouseButtonRelease: released(*static_cast<QMouseEvent*>(event)); break;
    case QEvent::Leave:
      if (down_ != Qt::NoButton) return false;
      input_.pointerLeft();
      break;
    case QEvent::KeyPress: key(*static_cast<QKeyEvent*>(event)); break;
    case QEvent::InputMethod: {
      const std::string text = static_cast<QInputMethodEvent*>(event)->commitString().toStdString();
      if (!text.empty() && system_.overlay == nullptr) input_.typed(text);
      break;
    }
    default: break;
  }
  return true;
}

void PanelEvents::pressed(const QMouseEvent& event) {
  const auto button = buttonOf(event.button());
  if (system_.overlay != nullptr && system_.overlay->pressedBeside()) return;
  if (!button) return;
  down_ |= event.button();
  input_.pressed(*button, canvas_.toScene(event.position()));
}

void PanelEvents::released(const QMouseEvent& event) {
  if (!down_.testFlag(event.button())) return;
  down_ &= ~Qt::MouseButtons(event.button());
  input_.released(*buttonOf(event.button()), canvas_.toScene(event.position()));
}

void PanelEvents::key(const QKeyEvent& event) {
  if (system_.overlay != nullptr && system_.overlay->keyBeside(event)) return;
  const auto meaning = KeyMapping::gridKey(event);
  constexpr auto commanding = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  const bool command = (event.modifiers() & commanding) != 0;
  const std::string written = meaning || command ? std::string() : KeyMapping::written(event);
  if (written.empty() && event.modifiers() != Qt::NoModifier) {
    const KeyCombo combo = system_.comboOf(event);
    if (!combo.isEmpty() && input_.hotKey(combo, event.isAutoRepeat())) return;
  }
  if (meaning) {
    input_.key(*meaning);
  } else if (!written.empty()) {
    input_.typed(written);
  }
}

}  // namespace tessaspaces
