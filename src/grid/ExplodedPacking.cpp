#include "grid/ExplodedPacking.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "grid/packing/Fidelity.h"
#include "grid/packing/Relaxation.h"
#include "grid/packing/Strategies.h"

namespace tessaspaces {
namespace {

using namespace packing;

/// Keeps rounding from making neighbours touch; a part of the tile's shorter side that nobody sees.
constexpr double hairline = 1e-8;
/// The air between two windows is a part of the extent that an average one can have, but never more than a part of the
/// tile's shorter side. What is wanted first, and then as much more as there is room for.
constexpr double gapOfWindow = 0.05;
constexpr double gapOfSide = 0.015;
constexpr double mostGaps = 2.5;

/// What a picture that is lost altogether, and the missing air, count against a larger scale.
constexpr double weightOfLoss = 0.9;
constexpr double weightOfGap = 0.06;

/// To which part the scale of the simple strategies is found.
constexpr double precision = 1e-7;
/// Halvings; ends the search for a scale where nothing fits at all.
constexpr int mostSteps = 100;
/// More windows than these are placed less often in the search for the best scale.
constexpr std::size_t mostForThorough = 80;

/// By how much the boxes could grow, with their places, until they fill the room in one direction.
double stretch(const Task& task, const Places& places) {
  Size used;
  for (std::size_t i = 0; i < places.size(); ++i) {
    used.width = std::max(used.width, places[i].x + task.boxes[i].width);
    used.height = std::max(used.height, places[i].y + task.boxes[i].height);
  }
  return std::max(1.0, std::min(task.room.width / used.width, task.room.height / used.height));
}

class Packer {
 public:
  struct Candidate {
    Places places;
    double scale = 0;
    double gap = 0;
    double value = 0;
  };

  /// The natural extents in the boxes, the natural centres in the wishes.
  Packer(Task windows, double limit) : windows_(std::move(windows)), limit_(limit) {
    const double side = std::min(windows_.room.width, windows_.room.height);
    const double share = windows_.room.width * windows_.room.height / static_cast<double>(windows_.boxes.size());
    hairline_ = hairline * side;
    wantedGap_ = std::min(gapOfSide * side, gapOfWindow * std::sqrt(share));
  }

  /// Absent only when even windows of no extent find no place.
  std::optional<Candidate> pack() {
    const auto simple = simpleStrategies(windows_);
    floor_ = largestOf(simple);
    auto best = bestOf(faithfulStrategies(windows_));
    return best ? best : bestOf(simple);
  }

 private:
  /// The windows at this scale with half the gap on all sides; half a gap is also kept to the edges of the tile.
  [[nodiscard]] Task task(double scale, double gap) const {
    Task task = windows_;
    task.room = {task.room.width - gap, task.room.height - gap};
    for (auto& box : task.boxes) box = {box.width * scale + gap, box.height * scale + gap};
    for (auto& wish : task.wishes) wish = {wish.x - gap / 2, wish.y - gap / 2};
    return task;
  }

  /// The largest scale that one of these reaches; all of them do at every smaller one what they do at a larger.
  [[nodiscard]] double largestOf(const std::vector<Strategy>& strategies) const {
    double fits = 0;
    for (const auto& strategy : strategies) {
      double fails = limit_ * (1 + precision);
      double scale = limit_;
      bool closing = false;
      for (int i = 0; i < mostSteps && fits * (1 + precision) < fails; ++i) {
        const auto chosen = task(scale, hairline_);
        if (const auto places = strategy(chosen)) {
          // The same arrangement can be as large as its own extent allows. Often no other is larger: see at once.
          fits = std::min(limit_, scale * stretch(chosen, *places));
          closing = !closing;
        } else {
          fails = scale;
          closing = false;
        }
        scale = closing ? fits * (1 + precision) : (fits + fails) / 2;
      }
    }
    return fits;
  }

  /// A scale between one that fits and the limit that is about the largest.
  double large(const Strategy& strategy, double gap, double fits, double toWithin) const {
    if (strategy(task(limit_, gap))) return limit_;
    double fails = limit_;
    for (int i = 0; i < mostSteps && fails - fits > toWithin * fails; ++i) {
      const double middle = (fits + fails) / 2;
      (strategy(task(middle, gap)) ? fits : fails) = middle;
    }
    return fits;
  }

  std::optional<Candidate> bestOf(const std::vector<Strategy>& strategies) const {
    std::optional<Candidate> best;
    for (const auto& strategy : strategies) {
      auto candidate = assess(strategy);
      if (candidate && (!best || candidate->value > best->value)) best = std::move(candidate);
    }
    return best;
  }

  /// What the strategy makes of it at the scale that must be reached, or a larger one; absent when it cannot.
  std::optional<Candidate> assess(const Strategy& strategy) const {
    if (!strategy(task(floor_, wantedGap_))) return assessTight(strategy);
    const bool thorough = windows_.boxes.size() <= mostForThorough;
    const double most = large(strategy, wantedGap_, floor_, thorough ? 0.006 : 0.02);
    auto best = place(strategy, most, wantedGap_);
    // At a smaller one there is more room to stay where one was.
    for (const double part : {0.5, 0.0}) {
      if (!thorough || most - floor_ < 0.02 * most) break;
      auto other = place(strategy, floor_ + part * (most - floor_), wantedGap_);
      if (other && other->value > best->value) best = std::move(other);
    }
    return best;
  }

  /// The same, with less air: as much as there can be at the scale that must be reached.
  std::optional<Candidate> assessTight(const Strategy& strategy) const {
    if (!strategy(task(floor_, hairline_))) return std::nullopt;
    double fits = hairline_;
    double fails = wantedGap_;
    for (int i = 0; i < 5; ++i) {
      const double middle = (fits + fails) / 2;
      (strategy(task(floor_, middle)) ? fits : fails) = middle;
    }
    return place(strategy, floor_, fits);
  }

  std::optional<Candidate> place(const Strategy& strategy, double scale, double gap) const {
    const auto chosen = task(scale, gap);
    auto places = strategy(chosen);
    if (!places) return std::nullopt;
    relax(chosen, mostGaps * wantedGap_ - gap, *places);
    const double value = scale / limit_ - weightOfLoss * loss(chosen, *places) - weightOfGap * (1 - gap / wantedGap_);
    return Candidate{std::move(*places), scale, gap, value};
  }

  Task windows_;
  double limit_;
  double hairline_;
  double wantedGap_;
  /// What the best simple strategy reaches.
  double floor_ = 0;
};

bool canBeSeen(const Rect& rect) {
  return !rect.isEmpty() && std::isfinite(rect.maxX()) && std::isfinite(rect.maxY());
}

}  // namespace

Packing packExploded(const Rect& content, std::span<const Rect> natural, double preScale) {
  Packing result;
  result.rects.resize(natural.size());
  if (!canBeSeen(content) || !(preScale > 0) || !std::isfinite(preScale)) return result;
  Task windows{{content.width, content.height}, {}, {}};
  for (const auto& rect : natural) {
    if (!canBeSeen(rect)) continue;
    const auto center = rect.center();
    windows.boxes.push_back({rect.width, rect.height});
    windows.wishes.push_back({center.x - content.x, center.y - content.y});
  }
  result.score = preScale;
  if (windows.boxes.empty()) return result;

  const auto packed = Packer(std::move(windows), preScale).pack();
  result.score = packed ? packed->scale : 0;
  if (!packed) return result;
  auto place = packed->places.begin();
  for (std::size_t i = 0; i < natural.size(); ++i) {
    if (!canBeSeen(natural[i])) continue;
    // Half a gap to the edge of the tile, and half a gap to the edge of the box.
    result.rects[i] = {content.x + place->x + packed->gap, content.y + place->y + packed->gap,
                       natural[i].width * packed->scale, natural[i].height * packed->scale};
    ++place;
  }
  return result;
}

}  // namespace tessaspaces
