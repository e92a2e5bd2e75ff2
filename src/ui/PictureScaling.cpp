#include "ui/PictureScaling.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
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

/// The rows of a span as one, in 16 bits a value.
void addRows(const QImage& picture, const Span& span, const std::uint16_t* weights, std::uint16_t* out, int values) {
  for (int j = 0; j < span.count; ++j) {
    const std::uint16_t weight = weights[j];
    const uchar* row = picture.constScanLine(span.first + j);
    if (j == 0) {
      for (int i = 0; i < values; ++i) out[i] = static_cast<std::uint16_t>(row[i] * weight);
    } else {
      for (int i = 0; i < values; ++i) out[i] = static_cast<std::uint16_t>(out[i] + row[i] * weight);
    }
  }
}

void addColumns(const std::uint16_t* row, const Spans& across, uchar* out) {
  for (const auto& span : across.spans) {
    std::uint32_t sum[4] = {};
    const std::uint16_t* from = row + 4 * static_cast<std::ptrdiff_t>(span.first);
    const std::uint16_t* weights = across.weights.data() + span.weights;
    for (int j = 0; j < span.count; ++j) {
      for (int value = 0; value < 4; ++value) sum[value] += static_cast<std::uint32_t>(from[4 * j + value]) * weights[j];
    }
    // A value is 255 * 256 * 256 at most: rounded it still fits.
    for (int value = 0; value < 4; ++value) out[value] = static_cast<uchar>((sum[value] + 0x7FFF) >> 16U);
    out += 4;
  }
}

}  // namespace

QImage scaledPicture(const QImage& picture, QSize size) {
  if (picture.size() == size) return picture.copy();
  if (picture.isNull() || size.isEmpty()) return {};
  if (size.width() > picture.width() || size.height() > picture.height()) {
    // Qt does enlarging well.
    QImage larger = picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    larger.convertTo(QImage::Format_ARGB32_Premultiplied);
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
