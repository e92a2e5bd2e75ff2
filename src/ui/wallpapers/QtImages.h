#pragma once

#include <QImage>

#include "base/Image.h"

namespace tessaspaces {

/// The picture's own pixels, not copied: valid as long as the picture.
[[nodiscard]] QImage borrowed(const Image& picture);
[[nodiscard]] ImageRef copied(const QImage& picture);

}  // namespace tessaspaces
