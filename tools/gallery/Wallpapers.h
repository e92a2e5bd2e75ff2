#pragma once

#include <QImage>

#include "base/Image.h"

namespace tessaspaces::gallery {

/// A wallpaper of that size, one of endlessly many: the same `number` gives the same picture.
[[nodiscard]] QImage wallpaper(int number, int width, int height);

/// As the core has pictures.
[[nodiscard]] ImageRef imageOf(const QImage& image);

}  // namespace tessaspaces::gallery
