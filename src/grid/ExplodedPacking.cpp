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
constexpr int gapSteps = 5;
/// More windows than these are placed less often in the search for the best scale.
constexpr std::size_t mostForThorough = 80;

/// By how much the boxes could grow, with their places, until they fill the room in one direction.
double stretch(const Task& task, const Places& places) {
  Size used;
  for (std::size_t i = 0; i < places.size(); ++i) {
    used.width = std::max(used.width, places[i].x + task.boxes[i].width);
    used.height = std::max(used.height, places[i].y + task.boxes[i].height);
  }
  // A little less, so that rounding cannot make it too much.
  return std::max(1.0, (1 - 1e-9) * std::min(task.room.width / used.width, task.room.height / used.height));
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

  struct Fitting {
    double scale;
    Places places;
  };
  /// What fits at a scale between the lowest and the limit that is about the largest; absent when the lowest does not.
  [[nodiscard]] std::optional<Fitting> large(const Strategy& strategy, double gap, double toWithin) const {
    const auto at = [&](double scale) { return strategy(task(scale, gap)); };
    auto lowest = at(floor_);
    if (!lowest) return std::nullopt;
    if (auto most = at(limit_)) return Fitting{limit_, std::move(*most)};
    Fitting best{floor_, std::move(*lowest)};
    double fails = limit_;
    for (int i = 0; i < mostSteps && fails - best.scale > toWithin * fails; ++i) {
      const double middle = (best.scale + fails) / 2;
      if (auto places = at(middle)) {
        best = {middle, std::move(*places)};
      } else {
        fails = middle;
      }
    }
    return best;
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
  [[nodiscard]] std::optional<Candidate> assess(const Strategy& strategy) const {
    const bool thorough = windows_.boxes.size() <= mostForThorough;
    auto most = large(strategy, wantedGap_, thorough ? 0.006 : 0.02);
    if (!most) return assessTight(strategy);
    auto best = finished(std::move(most->places), most->scale, wantedGap_);
    const double spare = best.scale - floor_;
    if (!thorough || spare < 0.02 * best.scale) return best;
    // At a smaller one there is more room to stay where one was.
    for (const double scale : {floor_ + spare / 2, floor_}) {
      auto places = strategy(task(scale, wantedGap_));
      if (!places) continue;
      auto other = finished(std::move(*places), scale, wantedGap_);
      if (other.value > best.value) best = std::move(other);
    }
    return best;
  }

  /// The same, with less air: as much as there can be at the scale that must be reached.
  [[nodiscard]] std::optional<Candidate> assessTight(const Strategy& strategy) const {
    auto best = strategy(task(floor_, hairline_));
    if (!best) return std::nullopt;
    double fits = hairline_;
    double fails = wantedGap_;
    for (int i = 0; i < gapSteps; ++i) {
      const double middle = (fits + fails) / 2;
      if (auto places = strategy(task(floor_, middle))) {
        fits = middle;
        best = std::move(places);
      } else {
        fails = middle;
      }
    }
    return finished(std::move(*best), floor_, fits);
  }

  [[nodiscard]] Candidate finished(Places places, double scale, double gap) const {
    const auto chosen = task(scale, gap);
    relax(chosen, mostGaps * wantedGap_ - gap, places);
    const double value = scale / limit_ - weightOfLoss * loss(chosen, places) - weightOfGap * (1 - gap / wantedGap_);
    return {std::move(places), scale, gap, value};
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
