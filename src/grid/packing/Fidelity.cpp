#include "grid/packing/Fidelity.h"

#include <algorithm>
#include <cmath>

namespace tessaspaces::packing {
namespace {

// Of many boxes, those that come soon after one another in the list stand for all pairs.
constexpr std::size_t comparedWithEach = 60;

Point center(const Task& task, const Places& places, std::size_t i) {
  return {places[i].x + task.boxes[i].width / 2, places[i].y + task.boxes[i].height / 2};
}

}  // namespace

double inversions(const Task& task, const Places& places) {
  const auto count = places.size();
  double turned = 0;
  double all = 0;
  const auto compare = [&](double wished, double is, double room) {
    wished /= room;
    all += std::abs(wished);
    if (wished * is < 0) turned += std::abs(wished);
  };
  for (std::size_t i = 0; i < count; ++i) {
    const auto first = center(task, places, i);
    for (std::size_t j = i + 1; j < std::min(count, i + 1 + comparedWithEach); ++j) {
      const auto second = center(task, places, j);
      compare(task.wishes[j].x - task.wishes[i].x, second.x - first.x, task.room.width);
      compare(task.wishes[j].y - task.wishes[i].y, second.y - first.y, task.room.height);
    }
  }
  return all > 0 ? turned / all : 0;
}

double loss(const Task& task, const Places& places) {
  if (places.empty()) return 0;
  double moved = 0;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const auto at = center(task, places, i);
    moved += std::hypot((at.x - task.wishes[i].x) / task.room.width, (at.y - task.wishes[i].y) / task.room.height);
  }
  // Two points at random are about half a room apart.
  const double displacement = std::min(1.0, 2 * moved / static_cast<double>(places.size()));
  return (displacement + inversions(task, places)) / 2;
}

}  // namespace tessaspaces::packing
