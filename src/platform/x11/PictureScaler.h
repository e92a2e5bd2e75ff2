#pragma once

#include "platform/x11/PictureBatch.h"

namespace tessaspaces {

/// Makes a pixmap of depth 32 or 24 whose pixels are an Image's, but for their alpha where the source has none. It
/// shows the source at the given size, which is not above the source's; the caller frees it. Bilinear, by halves as
/// long as it has to shrink to less than that: a single larger step would leave pixels out. Sends requests only.
[[nodiscard]] xcb_pixmap_t scaleDown(CaptureLink& link, const PictureSource& source, ImageSize size);

}  // namespace tessaspaces
