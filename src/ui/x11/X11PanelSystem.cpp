#include "ui/x11/X11PanelSystem.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QTimer>

#include "platform/x11/KeyTable.h"
#include "platform/x11/Xkb.h"

namespace tessaspaces {
namespace {

/// No key of any keyboard has a larger code of the product's.
constexpr std::uint32_t keyCodeEnd = 128;

}  // namespace

std::unique_ptr<X11PanelSystem> X11PanelSystem::make() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr || x11->connection() == nullptr) return nullptr;
  return std::unique_ptr<X11PanelSystem>(new X11PanelSystem(x11->connection()));
}

X11PanelSystem::X11PanelSystem(xcb_connection_t* connection)
    : connection_(connection), grab_(connection), cover_(connection) {
  const auto* xkb = xcb_get_extension_data(connection, &xcb_xkb_id);
  if (xkb != nullptr && xkb->present != 0) xkbEvent_ = xkb->first_event;
  coverSeen_ = cover_.covered.connect([this](QWindow* window) { covered.emit(window); });
  QCoreApplication::instance()->installNativeEventFilter(this);
}

X11PanelSystem::~X11PanelSystem() {
  QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool X11PanelSystem::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
  if (type != "xcb_generic_event_t") return false;
  const auto& event = *static_cast<const xcb_generic_event_t*>(message);
  const auto kind = eventType(event);
  if (kind == XCB_MAPPING_NOTIFY || (xkbEvent_ != 0 && kind == xkbEvent_ &&
                                     eventAs<xcb_xkb_map_notify_event_t>(event).xkbType != XCB_XKB_STATE_NOTIFY)) {
    keyboard_.reset();
  }
  cover_.handle(event);
  switch (grab_.judge(event)) {
    case InputGrab::Verdict::pass: return false;
    case InputGrab::Verdict::swallow: return true;
    // Not in the middle of Qt's handling of it.
    case InputGrab::Verdict::broken: QTimer::singleShot(0, &context_, [this] { inputLost(); }); return false;
  }
  return false;
}

void X11PanelSystem::inputLost() {
  QWindow* window = grab_.holder();
  if (window != nullptr && !grab_.take(*window)) covered.emit(window);
}

void X11PanelSystem::readKeyboard() {
  keyboard_ = KeyboardMap::read(connection_);
  keyCodes_.clear();
  for (std::uint32_t keyCode = 0; keyCode < keyCodeEnd; ++keyCode) {
    if (!meaningOf(keyCode)) continue;
    for (const auto keycode : keyboard_->keycodesOf(keyCode)) keyCodes_.try_emplace(keycode, keyCode);
  }
}

KeyCombo X11PanelSystem::comboOf(const QKeyEvent& event) {
  if (!keyboard_) readKeyboard();
  KeyCombo combo;
  const auto found = keyCodes_.find(event.nativeScanCode());
  if (found != keyCodes_.end()) combo.keyCode = found->second;
  for (const auto modifier : {KeyCombo::command, KeyCombo::shift, KeyCombo::option, KeyCombo::control}) {
    if ((event.nativeModifiers() & keyboard_->modifierBits(modifier)) != 0) combo.modifiers |= modifier;
  }
  return combo;
}

}  // namespace tessaspaces
