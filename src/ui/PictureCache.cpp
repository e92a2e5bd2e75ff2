#include "ui/PictureCache.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <tuple>
#include <utility>

#include "ui/RoundedCorners.h"

namespace tessaspaces {
namespace {

bool isOpaque(const QImage& image) {
  for (int y = 0; y < image.height(); ++y) {
    const auto* row = reinterpret_cast<const std::uint32_t*>(image.constScanLine(y));
    std::uint32_t all = 0xFF000000U;
    for (int x = 0; x < image.width(); ++x) all &= row[x];
    if (all != 0xFF000000U) return false;
  }
  return true;
}

/// Without a copy; `whole` outlives it.
QImage view(const QImage& whole, const QRect& part, QImage::Format format) {
  return {whole.constScanLine(part.y()) + 4 * static_cast<qsizetype>(part.x()), part.width(), part.height(),
          whole.bytesPerLine(), format};
}

ReadyPicture made(const PictureRequest& request) {
  const QImage whole = wrapped(request.image);
  const QRect part = request.part & whole.rect();
  if (whole.isNull() || part.isEmpty() || request.size.isEmpty()) return {};
  QImage scaled = view(whole, part, QImage::Format_ARGB32_Premultiplied);
  scaled = scaled.size() == request.size ? scaled.copy()
                                         : scaled.scaled(request.size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  scaled.convertTo(QImage::Format_ARGB32_Premultiplied);
  const bool opaque = isOpaque(scaled);
  const int corner = std::min({request.corner, scaled.width() / 2, scaled.height() / 2});
  RoundedCorners::cut(scaled, corner);
  RoundedCorners::outline(scaled, corner, request.line, QColor::fromRgba(request.lineColor));
  return {std::move(scaled), opaque ? corner : -1};
}

auto key(const PictureRequest& request) {
  return std::tuple(request.image.get(), request.size.width(), request.size.height(), request.part.x(),
                    request.part.y(), request.part.width(), request.part.height(), request.corner, request.line,
                    request.lineColor);
}

}  // namespace

QImage wrapped(const ImageRef& image) {
  if (!image || image->width < 1 || image->height < 1) return {};
  const auto pixels = static_cast<std::size_t>(image->width) * static_cast<std::size_t>(image->height);
  if (image->pixels.size() < pixels) return {};
  auto keep = std::make_unique<ImageRef>(image);
  return {reinterpret_cast<const uchar*>(image->pixels.data()),
          image->width,
          image->height,
          4 * static_cast<qsizetype>(image->width),
          QImage::Format_ARGB32_Premultiplied,
          [](void* kept) { delete static_cast<ImageRef*>(kept); },
          keep.release()};
}

ReadyPicture::ReadyPicture(QImage image, int corner) : image_(std::move(image)), corner_(corner) {
  const int rows = image_.height() - 2 * corner;
  if (corner < 0 || rows < 1) return;
  opaque_ = view(image_, QRect(0, corner, image_.width(), rows), QImage::Format_RGB32);
}

void ReadyPicture::draw(QPainter& painter, QPoint at) const {
  if (opaque_.isNull()) {
    painter.drawImage(at, image_);
    return;
  }
  if (corner_ > 0) {
    const int below = image_.height() - corner_;
    painter.drawImage(at, image_, QRect(0, 0, image_.width(), corner_));
    painter.drawImage(at + QPoint(0, below), image_, QRect(0, below, image_.width(), corner_));
  }
  painter.drawImage(at + QPoint(0, corner_), opaque_);
}

QRect coveringPart(const Image& image, QSize size, double across, double down) {
  const QRect whole(0, 0, image.width, image.height);
  if (size.isEmpty() || whole.isEmpty()) return whole;
  const double wanted = static_cast<double>(size.width()) / size.height();
  const double width = std::min<double>(image.width, image.height * wanted);
  const double height = std::min<double>(image.height, image.width / wanted);
  const int w = std::clamp(static_cast<int>(std::lround(width)), 1, image.width);
  const int h = std::clamp(static_cast<int>(std::lround(height)), 1, image.height);
  return {static_cast<int>(std::lround((image.width - w) * across)),
          static_cast<int>(std::lround((image.height - h) * down)), w, h};
}

bool PictureCache::Less::operator()(const PictureRequest& a, const PictureRequest& b) const {
  return key(a) < key(b);
}

const ReadyPicture& PictureCache::picture(const PictureRequest& request) {
  const auto found = pictures_.find(request);
  if (found != pictures_.end()) return found->second;
  return pictures_.emplace(request, made(request)).first->second;
}

void PictureCache::keepOnly(const std::vector<PictureRequest>& requests) {
  std::map<PictureRequest, ReadyPicture, Less> kept;
  for (const auto& request : requests) {
    if (auto node = pictures_.extract(request)) kept.insert(std::move(node));
  }
  pictures_ = std::move(kept);
}

std::size_t PictureCache::bytes() const {
  std::size_t sum = 0;
  for (const auto& [request, picture] : pictures_) sum += static_cast<std::size_t>(picture.image().sizeInBytes());
  return sum;
}

}  // namespace tessaspaces
