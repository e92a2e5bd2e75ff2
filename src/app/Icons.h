#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QString>

namespace tessaspaces {

/// The program's own pictures, drawn from vectors at whatever size and resolution is asked for.
namespace Icons {

/// A one-colour symbol like "gearshape" that takes the palette's text colour each time it is painted; a
/// null icon when there is no such symbol.
[[nodiscard]] QIcon symbol(const QString& name);

/// Paints a symbol in a colour of one's own.
void paintSymbol(QPainter& painter, const QString& name, const QRectF& rect, const QColor& color);

/// What stands in the system tray, in this colour. Null when the picture is missing.
[[nodiscard]] QIcon menuBar(const QColor& color);

/// The coloured icon of the program.
[[nodiscard]] QIcon application();

/// The word mark's size at the given width; empty when the picture is missing.
[[nodiscard]] QSizeF logoSize(double width);
void paintLogo(QPainter& painter, const QRectF& rect, const QColor& text);

}  // namespace Icons
}  // namespace tessaspaces
