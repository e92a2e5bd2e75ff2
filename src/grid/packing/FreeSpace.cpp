#include "grid/packing/FreeSpace.h"

#include <algorithm>
#include <array>
#include <limits>

namespace tessaspaces::packing {
namespace {

struct Area {
  double left, top, right, bottom;

  [[nodiscard]] bool inside(const Area& other) const {
    return left >= other.left && top >= other.top && right <= other.right && bottom <= other.bottom;
  }
  [[nodiscard]] bool overlaps(const Area& other) const {
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
  }
  /// They have a part of an edge in common.
  [[nodiscard]] bool touches(const Area& other) const {
    if (right == other.left || left == other.right) return top < other.bottom && other.top < bottom;
    if (bottom == other.top || top == other.bottom) return left < other.right && other.left < right;
    return false;
  }
};

double squaredDistance(Point a, Point b) {
  return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

/// The free space as the list of the largest rectangles that are free; they overlap one another.
class FreeAreas {
 public:
  FreeAreas(Size room, double smallestWidth, double smallestHeight)
      : areas_{{0, 0, room.width, room.height}}, smallestWidth_(smallestWidth), smallestHeight_(smallestHeight) {}

  [[nodiscard]] std::optional<Point> nearest(Size box, Point corner, Fit fit) const {
    std::optional<Point> best;
    double bestDistance = std::numeric_limits<double>::infinity();
    for (const auto& area : areas_) {
      const double lastX = area.right - box.width;
      const double lastY = area.bottom - box.height;
      if (lastX < area.left || lastY < area.top) continue;
      Point place{std::clamp(corner.x, area.left, lastX), std::clamp(corner.y, area.top, lastY)};
      if (fit == Fit::corners) {
        place.x = corner.x - area.left <= lastX - corner.x ? area.left : lastX;
        place.y = corner.y - area.top <= lastY - corner.y ? area.top : lastY;
      }
      const double distance = squaredDistance(place, corner);
      if (distance < bestDistance) {
        bestDistance = distance;
        best = place;
      }
    }
    return best;
  }

  void take(const Area& taken) {
    for (auto& side : pieces_) side.clear();
    beside_.clear();
    std::size_t kept = 0;
    for (const auto& area : areas_) {
      if (!area.overlaps(taken)) {
        if (area.touches(taken)) beside_.push_back(area);
        areas_[kept++] = area;
        continue;
      }
      add(pieces_[0], {area.left, area.top, taken.left, area.bottom});
      add(pieces_[1], {taken.right, area.top, area.right, area.bottom});
      add(pieces_[2], {area.left, area.top, area.right, taken.top});
      add(pieces_[3], {area.left, taken.bottom, area.right, area.bottom});
    }
    areas_.resize(kept);
    for (const auto& side : pieces_) keepLargest(side);
  }

 private:
  void add(std::vector<Area>& side, const Area& piece) const {
    if (piece.right - piece.left < smallestWidth_ || piece.bottom - piece.top < smallestHeight_) return;
    side.push_back(piece);
  }

  /// What is left of an area may lie inside another: in the rest of another one on the same side of the box (those on
  /// its other sides end before it begins), or in one that was not cut. That one then ends just where the box begins.
  void keepLargest(const std::vector<Area>& side) {
    for (std::size_t i = 0; i < side.size(); ++i) {
      const auto& piece = side[i];
      const auto holds = [&](const Area& other) { return piece.inside(other); };
      const auto at = side.begin() + static_cast<std::ptrdiff_t>(i);
      // Of two equal pieces the first stays.
      const bool needless =
          std::any_of(beside_.begin(), beside_.end(), holds) || std::any_of(side.begin(), at, holds) ||
          std::any_of(at + 1, side.end(), [&](const Area& o) { return piece.inside(o) && !o.inside(piece); });
      if (!needless) areas_.push_back(piece);
    }
  }

  std::vector<Area> areas_;
  // Used by `take` alone; here so that they keep their memory.
  std::array<std::vector<Area>, 4> pieces_;  // left, right, above, below
  std::vector<Area> beside_;
  double smallestWidth_;
  double smallestHeight_;
};

}  // namespace

std::optional<Places> placeInFreeSpace(const Task& task, Fit fit, std::span<const std::size_t> order) {
  double width = std::numeric_limits<double>::infinity();
  double height = width;
  double area = 0;
  for (const auto& box : task.boxes) {
    width = std::min(width, box.width);
    height = std::min(height, box.height);
    area += box.width * box.height;
  }
  if (area > task.room.width * task.room.height) return std::nullopt;
  FreeAreas free(task.room, width, height);
  Places places(task.boxes.size());
  for (const auto index : order) {
    const auto& box = task.boxes[index];
    const auto& wish = task.wishes[index];
    const auto place = free.nearest(box, {wish.x - box.width / 2, wish.y - box.height / 2}, fit);
    if (!place) return std::nullopt;
    places[index] = *place;
    free.take({place->x, place->y, place->x + box.width, place->y + box.height});
  }
  return places;
}

}  // namespace tessaspaces::packing
