#pragma once

namespace tessaspaces {

/// A position in points. Which corner is the origin is said where the value is used.
struct Point {
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

/// An extent in points.
struct Size {
  double width = 0;
  double height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

/// An axis-aligned rectangle, half-open: it contains its minimum edges and not its maximum ones, so
/// that of two rectangles side by side exactly one contains a point on the shared edge.
/// A rectangle whose width or height is not positive is empty.
struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  [[nodiscard]] double minX() const { return x; }
  [[nodiscard]] double minY() const { return y; }
  [[nodiscard]] double maxX() const { return x + width; }
  [[nodiscard]] double maxY() const { return y + height; }
  [[nodiscard]] Point center() const { return {x + width / 2, y + height / 2}; }

  [[nodiscard]] bool isEmpty() const;
  /// min <= p < max on both axes; an empty rectangle contains nothing.
  [[nodiscard]] bool contains(Point p) const;
  /// True when the two share an area; touching edges share none, and an empty rectangle intersects nothing.
  [[nodiscard]] bool intersects(const Rect& other) const;
  /// The shared area; all-zero when there is none.
  [[nodiscard]] Rect intersection(const Rect& other) const;
  /// Moves each edge inwards by dx or dy; negative values enlarge. May come out empty.
  [[nodiscard]] Rect inset(double dx, double dy) const;

  friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace tessaspaces
