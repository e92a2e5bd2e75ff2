#include "ui/wallpapers/QtImages.h"

#include <cstring>
#include <memory>

namespace tessaspaces {

QImage borrowed(const Image& picture) {
  constexpr int bytesPerPixel = 4;
  return {reinterpret_cast<const uchar*>(picture.pixels.data()), picture.width, picture.height,
          static_cast<qsizetype>(picture.width) * bytesPerPixel, QImage::Format_ARGB32_Premultiplied};
}

ImageRef copied(const QImage& picture) {
  const auto source = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  auto image = std::make_shared<Image>(Image{source.width(), source.height(), {}});
  const auto width = static_cast<std::size_t>(source.width());
  image->pixels.resize(width * static_cast<std::size_t>(source.height()));
  for (int y = 0; y < source.height(); ++y) {
    std::memcpy(image->pixels.data() + static_cast<std::size_t>(y) * width, source.constScanLine(y),
                width * sizeof(std::uint32_t));
  }
  return image;
}

}  // namespace tessaspaces
