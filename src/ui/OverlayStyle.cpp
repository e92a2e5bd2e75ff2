#include "ui/OverlayStyle.h"

#include <QGraphicsDropShadowEffect>
#include <QWidget>

namespace tessaspaces::OverlayStyle {
namespace {

QString css(const QColor& color) {
  return QStringLiteral("rgba(%1,%2,%3,%4)").arg(color.red()).arg(color.green()).arg(color.blue()).arg(color.alpha());
}

QColor opaque(QColor color) {
  color.setAlpha(255);
  return color;
}

}  // namespace

QString menu(const Theme& theme) {
  return QStringLiteral(
             "QMenu { background: %1; color: %2; border: 1px solid %3; border-radius: 10px; padding: 6px; }"
             "QMenu::item { padding: 6px 28px 6px 12px; border-radius: 6px; margin: 1px 0px; }"
             "QMenu::item:selected { background: %4; color: %5; }"
             "QMenu::item:disabled { color: %6; background: transparent; }"
             "QMenu::separator { height: 1px; background: %3; margin: 5px 8px; }"
             "QMenu::indicator { width: 14px; height: 14px; margin-left: 6px; }")
      .arg(css(opaque(theme.surface)), css(theme.onSurface), css(theme.hairline), css(theme.accent),
           css(theme.onAccent), css(theme.onSurfaceSecondary));
}

QString field(const Theme& theme) {
  return QStringLiteral(
             "QLineEdit { background: %1; color: %2; border: 2px solid %3; border-radius: 9px; padding: 2px 10px;"
             " selection-background-color: %3; selection-color: %4; }")
      .arg(css(opaque(theme.surface)), css(theme.onSurface), css(theme.accent), css(theme.onAccent));
}

QString card(const Theme& theme) {
  return QStringLiteral(
             "tessaspaces--AlertCard { background: %1; border: 1px solid %2; border-radius: 14px; }"
             "QLabel { background: transparent; color: %3; } QLabel#body { color: %4; }")
      .arg(css(opaque(theme.surface)), css(theme.hairline), css(theme.onSurface), css(theme.onSurfaceSecondary));
}

void addShadow(QWidget& widget) {
  auto* shadow = new QGraphicsDropShadowEffect(&widget);
  shadow->setBlurRadius(36);
  shadow->setOffset(0, 8);
  shadow->setColor(QColor(0, 0, 0, 120));
  widget.setGraphicsEffect(shadow);
}

}  // namespace tessaspaces::OverlayStyle
