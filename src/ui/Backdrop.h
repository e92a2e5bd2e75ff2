#pragma once

#include <QImage>
#include <QSize>

#include "grid/GridScene.h"
#include "ui/Theme.h"

namespace tessaspaces {

/// What lies behind the tiles: the wallpaper, blurred and veiled so that everything on it can be read; a gradient where
/// there is none. Made anew only when something it is made from changes. Main thread.
class Backdrop {
 public:
  /// Opaque (RGB32), of that size in device pixels.
  const QImage& image(const TileBackground& background, QSize size, const Theme& theme);

 private:
  QImage image_;
  ImageRef wallpaper_;
  Theme theme_;
};

}  // namespace tessaspaces
