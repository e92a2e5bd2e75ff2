#pragma once

#include <QRect>
#include <algorithm>
#include <cmath>

#include "base/Geometry.h"

namespace tessaspaces {

/// Points on the pixels of a device. Everything is drawn in whole pixels, so that edges are sharp at any scale and what
/// is drawn anew in part comes out exactly as it was.
struct DevicePixels {
  /// Pixels per point.
  double scale = 1;

  /// Each edge on the nearest pixel.
  [[nodiscard]] QRect rect(const Rect& points) const {
    const auto edge = [this](double at) { return static_cast<int>(std::lround(at * scale)); };
    const int left = edge(points.minX());
    const int top = edge(points.minY());
    return {left, top, edge(points.maxX()) - left, edge(points.maxY()) - top};
  }
  /// The nearest pixel at the top left, and an extent that does not depend on where that is: what moves keeps its size.
  [[nodiscard]] QRect moving(const Rect& points) const {
    const auto nearest = [this](double length) { return static_cast<int>(std::lround(length * scale)); };
    return {nearest(points.x), nearest(points.y), nearest(points.width), nearest(points.height)};
  }
  /// All pixels that the points touch.
  [[nodiscard]] QRect covering(const QRect& points) const {
    const auto down = [this](int at) { return static_cast<int>(std::floor(at * scale)); };
    const auto up = [this](int at) { return static_cast<int>(std::ceil(at * scale)); };
    const int left = down(points.left());
    const int top = down(points.top());
    return {left, top, up(points.left() + points.width()) - left, up(points.top() + points.height()) - top};
  }
  /// At least one pixel for what is there at all.
  [[nodiscard]] int length(double points) const {
    return points > 0 ? std::max(1, static_cast<int>(std::lround(points * scale))) : 0;
  }
};

}  // namespace tessaspaces
