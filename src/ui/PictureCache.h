#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <map>
#include <vector>

#include "base/Image.h"

namespace tessaspaces {

/// A picture without a copy of its pixels, which it keeps alive. Null for none, and for one whose pixels are not as
/// many as it says.
[[nodiscard]] QImage wrapped(const ImageRef& image);

/// A picture in the size that it is drawn in. What is opaque of it is drawn by plain copying.
class ReadyPicture {
 public:
  ReadyPicture() = default;
  /// The rows from the top and from the bottom that may be transparent are `corner` ones.
  ReadyPicture(QImage image, int corner);

  [[nodiscard]] const QImage& image() const { return image_; }
  [[nodiscard]] bool isNull() const { return image_.isNull(); }
  /// But for its corners.
  [[nodiscard]] bool isOpaque() const { return !opaque_.isNull(); }
  void draw(QPainter& painter, QPoint at) const;

 private:
  QImage image_;   // ARGB32_Premultiplied
  QImage opaque_;  // the opaque rows of it; null where there are none
  int corner_ = 0;
};

/// What is to be drawn of a picture, in device pixels.
struct PictureRequest {
  ImageRef image;
  QSize size;
  /// The part of the picture that is seen, in its own pixels.
  QRect part;
  /// Corners are rounded by this radius, and a line runs along the edge.
  int corner = 0;
  int line = 0;
  QRgb lineColor = 0;
  friend bool operator==(const PictureRequest&, const PictureRequest&) = default;
};

/// The part of a picture that covers `size` and keeps the picture's aspect. Where something has to go, `across` and
/// `down` say where from: 0 keeps the left (the top), 1 the right (the bottom), 0.5 the middle.
[[nodiscard]] QRect coveringPart(const Image& image, QSize size, double across, double down);

/// Pictures scaled once to the size that they are drawn in. Main thread.
class PictureCache {
 public:
  /// Made when it is asked for first. Null when there is nothing to draw.
  const ReadyPicture& picture(const PictureRequest& request);
  /// Makes those that are missing, on all processors at once; returns when they are there.
  void makeAll(const std::vector<PictureRequest>& requests);
  /// Forgets all others.
  void keepOnly(const std::vector<PictureRequest>& requests);
  [[nodiscard]] std::size_t size() const { return pictures_.size(); }

 private:
  struct Less {
    bool operator()(const PictureRequest& a, const PictureRequest& b) const;
  };
  std::map<PictureRequest, ReadyPicture, Less> pictures_;
};

}  // namespace tessaspaces
