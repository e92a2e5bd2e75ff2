#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

namespace tessaspaces {

/// Colours of the overview, for a dark or a light desktop. A value: two themes are equal exactly when they look the
/// same. Main thread (fonts).
struct Theme {
  bool dark = true;
  /// Rings and fills of what is current, or would be hit.
  QColor accent;
  /// On top of `accent`, readable.
  QColor onAccent;
  /// Behind everything where there is no wallpaper: from the top to the bottom.
  QColor backdropTop;
  QColor backdropBottom;
  /// Laid over a blurred wallpaper, so that texts are readable on any.
  QColor veil;
  /// Texts that lie on the backdrop.
  QColor text;
  QColor secondaryText;
  /// Badges, fields, cards: what lies over the backdrop and carries text of its own.
  QColor surface;
  QColor onSurface;
  QColor onSurfaceSecondary;
  /// Hairlines around surfaces and previews.
  QColor hairline;
  /// The ring of the keyboard's selection, clearly different from `accent`.
  QColor selection;
  /// Cards that stand in for previews, with their title bar.
  QColor card;
  QColor cardBar;
  QColor shadow;

  /// Dark or light as the palette is; the accent from its highlight, made strong enough to be seen as a ring.
  static Theme fromPalette(const QPalette& palette);
  static Theme make(bool dark, const QColor& accent);

  /// The system's font, `pixels` high in the unit that is drawn in.
  [[nodiscard]] static QFont font(double pixels, QFont::Weight weight = QFont::Normal);

  friend bool operator==(const Theme&, const Theme&) = default;
};

}  // namespace tessaspaces
