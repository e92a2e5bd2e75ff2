#include "ui/wallpapers/WallpaperPainter.h"

#include <QFileInfo>
#include <QImageReader>
#include <QLinearGradient>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <optional>

#include "ui/wallpapers/QtImages.h"

namespace tessaspaces {
namespace {

// No picture that a camera or a painter makes is larger; decoding one would take minutes.
constexpr qint64 largestFile = qint64{256} << 20;
constexpr int largestSide = 32768;

/// A tile's pixels, and what of the wallpaper is behind them.
struct Canvas {
  QSize tile;
  QRectF display;      // in the tile's pixels; covers the tile
  QRectF allDisplays;  // the same
  double scale = 1;    // the tile's pixels for each device pixel of the display
};

Canvas canvasFor(const WallpaperPlace& place, ImageSize pixels) {
  Canvas canvas;
  canvas.tile = {std::max(1, pixels.width), std::max(1, pixels.height)};
  const double width = std::max(1.0, place.display.width);
  const double height = std::max(1.0, place.display.height);
  const double perPoint = std::max(canvas.tile.width() / width, canvas.tile.height() / height);
  canvas.scale = perPoint / std::max(0.1, place.scale);
  canvas.display = {(canvas.tile.width() - width * perPoint) / 2, (canvas.tile.height() - height * perPoint) / 2,
                    width * perPoint, height * perPoint};
  canvas.allDisplays = {canvas.display.x() + (place.allDisplays.x - place.display.x) * perPoint,
                        canvas.display.y() + (place.allDisplays.y - place.display.y) * perPoint,
                        place.allDisplays.width * perPoint, place.allDisplays.height * perPoint};
  if (canvas.allDisplays.isEmpty()) canvas.allDisplays = canvas.display;
  return canvas;
}

/// Where the picture is drawn; of a tiled one the first tile.
QRectF placeOf(QSizeF picture, WallpaperFit fit, const Canvas& canvas) {
  const auto& around = fit == WallpaperFit::spanned ? canvas.allDisplays : canvas.display;
  QSizeF size = picture * canvas.scale;
  switch (fit) {
    case WallpaperFit::tiled: return {around.topLeft(), size};
    case WallpaperFit::stretched: return around;
    case WallpaperFit::scaled: size = picture.scaled(around.size(), Qt::KeepAspectRatio); break;
    case WallpaperFit::zoomed:
    case WallpaperFit::spanned: size = picture.scaled(around.size(), Qt::KeepAspectRatioByExpanding); break;
    case WallpaperFit::centered:
    case WallpaperFit::none: break;
  }
  return {around.center() - QPointF(size.width(), size.height()) / 2, size};
}

/// On whole pixels, so that its edges are not mixed with what lies under it.
QRect onPixels(const QRectF& rect) {
  constexpr double slack = 0.01;  // of the arithmetic
  const auto aligned = rect.adjusted(slack, slack, -slack, -slack).toAlignedRect();
  return {aligned.topLeft(), aligned.size().expandedTo({1, 1})};
}

void paintColors(QPainter& painter, const WallpaperFile& file, const Canvas& canvas) {
  const auto first = QColor::fromRgb(file.firstColor);
  if (file.colors == WallpaperColors::solid) {
    painter.fillRect(QRect({}, canvas.tile), first);
    return;
  }
  const auto& area = canvas.display;
  QLinearGradient gradient(area.topLeft(),
                           file.colors == WallpaperColors::leftToRight ? area.topRight() : area.bottomLeft());
  gradient.setColorAt(0, first);
  gradient.setColorAt(1, QColor::fromRgb(file.secondColor));
  painter.fillRect(QRect({}, canvas.tile), gradient);
}

/// Reads a picture no larger than it is drawn.
class PictureFile {
 public:
  explicit PictureFile(const std::string& path) : path_(QString::fromStdString(path)), info_(path_) {}

  /// Why it cannot be read, in words.
  [[nodiscard]] std::optional<std::string> refusal() {
    if (!info_.exists()) return "there is no such file";
    // Opening a pipe would wait for ever.
    if (!info_.isFile()) return "it is no file";
    if (info_.size() > largestFile) return "it is too large";
    reader_.setFileName(path_);
    reader_.setDecideFormatFromContent(true);
    reader_.setAutoTransform(true);
    if (!reader_.canRead()) return reason();
    const auto size = reader_.size();
    if (size.width() > largestSide || size.height() > largestSide) return "it is too large";
    return std::nullopt;
  }
  /// As it is to be seen; absent when only reading it will tell.
  [[nodiscard]] std::optional<QSize> size() {
    const auto size = reader_.size();
    if (!size.isValid() || size.isEmpty()) return std::nullopt;
    return isTurned() ? size.transposed() : size;
  }
  /// Null when that fails. At least of the wanted size, unless the picture itself is smaller.
  [[nodiscard]] QImage read(QSize wanted) {
    const auto original = size();
    const bool smaller = original && wanted.width() <= original->width() && wanted.height() <= original->height();
    if (smaller) reader_.setScaledSize(isTurned() ? wanted.transposed() : wanted);
    return reader_.read();
  }
  [[nodiscard]] std::string reason() const { return reader_.errorString().toStdString(); }

 private:
  [[nodiscard]] bool isTurned() const {
    return reader_.transformation().testFlag(QImageIOHandler::TransformationRotate90);
  }

  QString path_;
  QFileInfo info_;
  QImageReader reader_;
};

/// Why that is impossible, in words; empty when it is done.
std::string paintPicture(QPainter& painter, const WallpaperFile& file, const Canvas& canvas) {
  PictureFile picture(file.path);
  if (const auto refusal = picture.refusal()) return *refusal;
  QImage image;
  auto size = picture.size();
  if (!size) {
    image = picture.read({});
    size = image.size();
  }
  auto target = onPixels(placeOf(*size, file.fit, canvas));
  // A picture for a far larger screen may be drawn far beyond the tile.
  target.setSize(target.size().boundedTo({largestSide, largestSide}));
  if (image.isNull()) image = picture.read(target.size());
  if (image.isNull()) return picture.reason();
  if (image.size() != target.size()) {
    image = image.scaled(target.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }
  if (file.fit == WallpaperFit::tiled) {
    painter.setBrushOrigin(target.topLeft());
    painter.fillRect(QRect({}, canvas.tile), QBrush(image));
  } else {
    painter.drawImage(target.topLeft(), image);
  }
  return {};
}

std::uint32_t averageColor(const Image& image) {
  std::uint64_t red = 0;
  std::uint64_t green = 0;
  std::uint64_t blue = 0;
  for (const auto pixel : image.pixels) {
    red += pixel >> 16U & 0xFFU;
    green += pixel >> 8U & 0xFFU;
    blue += pixel & 0xFFU;
  }
  const auto count = std::max<std::uint64_t>(1, image.pixels.size());
  return 0xFF000000U | static_cast<std::uint32_t>(red / count << 16U | green / count << 8U | blue / count);
}

PaintedBackground finished(const QImage& tile, std::string complaint) {
  PaintedBackground background{copied(tile), 0, std::move(complaint)};
  background.color = averageColor(*background.image);
  return background;
}

/// Half as large. What is transparent in part counts for what of it there is: so colours spread by a pixel.
QImage halved(const QImage& picture) {
  constexpr int least = 80;  // of 255: below that rounding has left too little of the colour
  const QSize half(std::max(1, picture.width() / 2), std::max(1, picture.height() / 2));
  auto small = picture.scaled(half, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                   .convertToFormat(QImage::Format_ARGB32_Premultiplied);
  const bool last = half == QSize(1, 1);
  for (int y = 0; y < small.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(small.scanLine(y));
    std::for_each(line, line + small.width(), [&](QRgb& pixel) {
      pixel = last || qAlpha(pixel) >= least ? 0xFF000000U | qUnpremultiply(pixel) : 0U;
    });
  }
  return small;
}

/// The picture with what lies around its transparent parts spread over them.
QImage filledUp(const QImage& picture) {
  if (picture.width() == 1 && picture.height() == 1) return picture;
  auto filled = filledUp(halved(picture))
                    .scaled(picture.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                    .convertToFormat(QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&filled);
  painter.drawImage(0, 0, picture);
  return filled;
}

}  // namespace

PaintedBackground paintWallpaper(const WallpaperFile& file, const WallpaperPlace& place, ImageSize pixels) {
  const auto canvas = canvasFor(place, pixels);
  QImage tile(canvas.tile, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&tile);
  paintColors(painter, file, canvas);
  std::string complaint;
  if (!file.path.empty() && file.fit != WallpaperFit::none) complaint = paintPicture(painter, file, canvas);
  painter.end();
  return finished(tile, std::move(complaint));
}

PaintedBackground coverWith(const Image& picture, ImageSize pixels) {
  const QSize wanted(std::max(1, pixels.width), std::max(1, pixels.height));
  auto source = borrowed(picture);
  if (std::any_of(picture.pixels.begin(), picture.pixels.end(), [](auto pixel) { return pixel >> 24U != 0xFF; })) {
    source = filledUp(source);
  }
  const auto covering = source.size().scaled(wanted, Qt::KeepAspectRatioByExpanding).expandedTo(wanted);
  if (covering != source.size()) source = source.scaled(covering, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  const QPoint middle((covering.width() - wanted.width()) / 2, (covering.height() - wanted.height()) / 2);
  return finished(source.copy({middle, wanted}), {});
}

}  // namespace tessaspaces
