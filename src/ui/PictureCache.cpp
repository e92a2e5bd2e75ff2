#include "ui/PictureCache.h"

#include <QSemaphore>
#include <QThread>
#include <QThreadPool>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <memory>
#include <tuple>
#include <utility>

#include "ui/PictureScaling.h"
#include "ui/RoundedCorners.h"

namespace tessaspaces {
namespace {

/// Not worth a second thread.
constexpr std::size_t fewPictures = 8;

bool isOpaque(const QImage& image) {
  const int width = image.width();
  for (int y = 0; y < image.height(); ++y) {
    const auto* row = reinterpret_cast<const std::uint32_t*>(image.constScanLine(y));
    std::uint32_t all = 0xFF000000U;
    for (int x = 0; x < width; ++x) all &= row[x];
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
  if (request.size == whole.size() && part == whole.rect() && request.corner == 0 && request.line == 0) {
    return {whole, isOpaque(whole) ? 0 : -1};
  }
  QImage scaled = scaledPicture(view(whole, part, QImage::Format_ARGB32_Premultiplied), request.size);
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

void PictureCache::makeAll(const std::vector<PictureRequest>& requests) {
  // Shared: a thread that begins only when all is done finds that out here.
  struct Work {
    std::vector<decltype(pictures_)::value_type*> missing;
    std::atomic<std::size_t> next = 0;
    QSemaphore done;
    void run() {
      for (auto i = next++; i < missing.size(); i = next++) {
        missing[i]->second = made(missing[i]->first);
        done.release();
      }
    }
  };
  const auto work = std::make_shared<Work>();
  for (const auto& request : requests) {
    const auto [at, isNew] = pictures_.try_emplace(request);
    if (isNew) work->missing.push_back(&*at);
  }
  const std::size_t processors = static_cast<std::size_t>(std::max(1, QThread::idealThreadCount()));
  const std::size_t helpers = std::min(processors - 1, work->missing.size() / fewPictures);
  for (std::size_t i = 0; i < helpers; ++i) QThreadPool::globalInstance()->tryStart([work] { work->run(); });
  work->run();
  work->done.acquire(static_cast<int>(work->missing.size()));
}

void PictureCache::keepOnly(const std::vector<PictureRequest>& requests) {
  std::map<PictureRequest, ReadyPicture, Less> kept;
  for (const auto& request : requests) {
    if (auto node = pictures_.extract(request)) kept.insert(std::move(node));
  }
  pictures_ = std::move(kept);
}

}  // namespace tessaspaces
