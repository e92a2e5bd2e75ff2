#include "ui/Theme.h"

#include <QGuiApplication>

namespace tessaspaces {

QFont Theme::font(double pixels, QFont::Weight weight) {
  QFont font = QGuiApplication::font();
  font.setPixelSize(qMax(1, qRound(pixels)));
  font.setWeight(weight);
  return font;
}

}  // namespace tessaspaces
