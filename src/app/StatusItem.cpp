#include "app/StatusItem.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include "app/Icons.h"
#include "settings/Log.h"

namespace tessaspaces {
namespace {

/// For a panel that does not tell which colour can be made out on it. Plasma's follow the palette; of any
/// other nothing is known, and this blue stands out from black and from white.
QColor assumedColor() {
  if (qgetenv("XDG_CURRENT_DESKTOP").contains("KDE")) return QGuiApplication::palette().color(QPalette::WindowText);
  return {0x3d, 0x8d, 0xf5};
}

QIcon textIcon(const QString& text, const QColor& color) {
  constexpr int side = 36;
  QPixmap pixmap(side, side);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  QFont font = painter.font();
  font.setPixelSize(side - 4);
  painter.setFont(font);
  painter.setPen(color);
  painter.drawText(pixmap.rect(), Qt::AlignCenter, text);
  painter.end();
  return QIcon(pixmap);
}

}  // namespace

StatusItem::StatusItem() : menu_(std::make_unique<QMenu>()), hosts_([this] { update(); }) {}

StatusItem::~StatusItem() = default;

void StatusItem::start() {
  menu_->installEventFilter(this);
  hosts_.start();
}

void StatusItem::setToolTip(const QString& text) {
  toolTip_ = text;
  if (tray_) tray_->setToolTip(text);
}

void StatusItem::setVisible(bool visible) {
  visible_ = visible;
  update();
}

void StatusItem::update() {
  if (!tray_ && visible_ && hosts_.hasAny()) {
    tray_ = std::make_unique<QSystemTrayIcon>(icon());
    tray_->setToolTip(toolTip_);
    tray_->setContextMenu(menu_.get());
    connect(tray_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
      if (reason == QSystemTrayIcon::Trigger) menu_->popup(QCursor::pos());
    });
  }
  if (tray_) {
    tray_->setIcon(icon());
    tray_->setVisible(visible_);
  } else if (visible_ && hosts_.isKnown() && !missingLogged_) {
    missingLogged_ = true;
    Log::warning("MENU BAR: no system tray found; the program stays usable by its keys, the icon appears with a tray");
  }
}

QIcon StatusItem::icon() const {
  const QColor color = hosts_.symbolColor().value_or(assumedColor());
  if (QIcon picture = Icons::menuBar(color); !picture.isNull()) return picture;
  if (QIcon picture = Icons::symbol("square.grid.3x3"); !picture.isNull()) return picture;
  return textIcon(QStringLiteral("▦"), color);
}

bool StatusItem::eventFilter(QObject* watched, QEvent* event) {
  if (watched == menu_.get() && event->type() == QEvent::PaletteChange) update();
  return QObject::eventFilter(watched, event);
}

}  // namespace tessaspaces
