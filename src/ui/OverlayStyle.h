#pragma once

#include <QString>

#include "ui/Theme.h"

class QWidget;

namespace tessaspaces {

/// How menu, field and message over a panel look: style sheets from the theme.
namespace OverlayStyle {

[[nodiscard]] QString menu(const Theme& theme);
[[nodiscard]] QString field(const Theme& theme);
[[nodiscard]] QString card(const Theme& theme);

/// Sets the widget apart from what it lies on.
void addShadow(QWidget& widget);

}  // namespace OverlayStyle
}  // namespace tessaspaces
