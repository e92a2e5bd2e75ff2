#include "ui/PictureScaling.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace tessaspaces {
namespace {

/// Weights of a span add up to this; with it a sum of weighted bytes still fits into 16 bits.
constexpr int whole = 256;

/// What one pixel of the result is made of along one axis.
struct Span {
  int first = 0;
  int count = 0;
  std::size_t weights = 0;  // index of the first one's weight
};

struct Spans {
  std::vector<Span> spans;
  std::vector<std::uint16_t> weights;
};

Spans spansFor(int from, int to) {
  Spans result;
  result.spans.reserve(static_cast<std::size_t>(to));
  const double step = static_cast<double>(from) / to;
  for (int i = 0; i < to; ++i) {
    const double start = i * step;
    const double end = std::min<double>(from, start + step);
    Span span;
    span.first = std::min(from - 1, static_cast<int>(start));
    span.count = std::max(1, static_cast<int>(std::ceil(end - 1e-9)) - span.first);
    span.weights = result.weights.size();
    // Rounding the sums rather than the parts makes the weights add up.
    int given = 0;
    for (int j = 0; j < span.count; ++j) {
      const double upTo = std::min<double>(end, span.first + j + 1) - start;
      const int sum = j + 1 == span.count ? whole : static_cast<int>(std::lround(upTo / (end - start) * whole));
      result.weights.push_back(static_cast<std::uint16_t>(sum - given));
      given = sum;
    }
    result.spans.push_back(span);
  }
  return result;
}

/// The rows of a span as one, 16 bits a value.
void addRows(const QImage& picture, const Span& span, const std::uint16_t* weights, std::uint16_t* out, int values) {
  for (int j = 0; j < span.count; ++j) {
    const std::uint16_t weight = weights[j];
    const uchar* row = picture.constScanLine(span.first + j);
    if (j == 0) {
      for (int i = 0; i < values; ++i) out[i] = static_cast<std::uint16_t>(row[i] * weight + whole / 2);
    } else {
      for (int i = 0; i < values; ++i) out[i] = static_cast<std::uint16_t>(out[i] + row[i] * weight);
    }
  }
  for (int i = 0; i < values; ++i) out[i] /= whole;
}

/// The four values of a pixel lie in one number, and a weighted sum of them never carries from one into the next.
void addColumns(const std::uint16_t* row, const Spans& across, uchar* out) {
  for (const auto& span : across.spans) {
    const std::uint16_t* from = row + 4 * static_cast<std::ptrdiff_t>(span.first);
    const std::uint16_t* weights = across.weights.data() + span.weights;
    std::uint64_t sum = 0x0080'0080'0080'0080U;
    for (int j = 0; j < span.count; ++j) {
      std::uint64_t pixel = 0;
      std::memcpy(&pixel, from + 4 * static_cast<std::ptrdiff_t>(j), sizeof pixel);
      sum += pixel * weights[j];
    }
    sum = sum >> 8U & 0x00FF'00FF'00FF'00FFU;
    sum |= sum >> 8U;
    sum &= 0x0000'FFFF'0000'FFFFU;
    sum |= sum >> 16U;
    const auto pixel = static_cast<std::uint32_t>(sum);
    std::memcpy(out, &pixel, sizeof pixel);
    out += sizeof pixel;
  }
}

}  // namespace

QImage scaledPicture(const QImage& picture, QSize size) {
  if (picture.size() == size) return picture.copy();
  if (picture.isNull() || size.isEmpty()) return {};
  if (size.width() > picture.width() || size.height() > picture.height()) {
    // Nothing is gained by more than a straight line between two pixels.
    QImage larger(size, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&larger);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(QPointF(), QSizeF(size)), picture, QRectF(picture.rect()));
    return larger;
  }
  const Spans across = spansFor(picture.width(), size.width());
  const Spans down = spansFor(picture.height(), size.height());
  QImage result(size, QImage::Format_ARGB32_Premultiplied);
  const int values = 4 * picture.width();
  std::vector<std::uint16_t> row(static_cast<std::size_t>(values));
  for (int y = 0; y < size.height(); ++y) {
    const auto& span = down.spans[static_cast<std::size_t>(y)];
    addRows(picture, span, down.weights.data() + span.weights, row.data(), values);
    addColumns(row.data(), across, result.scanLine(y));
  }
  return result;
}

}  // namespace tessaspaces
