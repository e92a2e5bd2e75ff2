#include "grid/packing/Relaxation.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <span>
#include <tuple>
#include <utility>

namespace tessaspaces::packing {
namespace {

constexpr int rounds = 2;
constexpr int sweeps = 4;
/// Boxes that reach into each other's rows by less than this part of the room do so by rounding only.
constexpr double rounding = 1e-10;

/// Who stands directly before whom along one axis: pairs of ranks, sorted by the first. Kept as one list, and as its
/// twin sorted by the second, since this is where the packing of hundreds of windows spends its time.
class Neighbours {
 public:
  using Link = std::pair<std::uint32_t, std::uint32_t>;

  void add(std::size_t from, std::size_t to) {
    links_.emplace_back(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to));
  }

  void index(std::size_t count) {
    begin_.assign(count + 1, 0);
    for (const auto& link : links_) ++begin_[link.first + 1];
    for (std::size_t i = 0; i < count; ++i) begin_[i + 1] += begin_[i];
    targets_.resize(links_.size());
    auto next = begin_;
    for (const auto& link : links_) targets_[next[link.first]++] = link.second;
  }

  [[nodiscard]] std::span<const std::uint32_t> of(std::size_t rank) const {
    return std::span(targets_).subspan(begin_[rank], begin_[rank + 1] - begin_[rank]);
  }

 private:
  std::vector<Link> links_;
  std::vector<std::uint32_t> begin_;
  std::vector<std::uint32_t> targets_;
};

/// The boxes seen along the horizontal axis, by rank from left to right.
class Line {
 public:
  Line(const Task& task, const Places& places) : room_(task.room.width), order_(places.size()) {
    std::iota(order_.begin(), order_.end(), 0);
    std::stable_sort(order_.begin(), order_.end(), [&](auto a, auto b) { return places[a].x < places[b].x; });
    for (const auto box : order_) {
      extents_.push_back(task.boxes[box].width);
      wishes_.push_back(task.wishes[box].x);
    }
    findNeighbours(task, places);
  }

  /// Makes each box wider by the same on both sides: by its part of the room that is left where it is most crowded,
  /// so that whatever stands in a line still fits.
  void widen(double most) {
    const auto count = order_.size();
    const auto lowest = lowestPlaces();
    const auto highest = highestPlaces();
    std::vector<int> behind(count, 0);
    std::vector<int> ahead(count, 0);
    for (std::size_t i = 0; i < count; ++i) {
      for (const auto before : before_.of(i)) behind[i] = std::max(behind[i], behind[before] + 1);
    }
    for (std::size_t i = count; i-- > 0;) {
      for (const auto after : after_.of(i)) ahead[i] = std::max(ahead[i], ahead[after] + 1);
    }
    added_.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
      const double spare = std::max(0.0, highest[i] - lowest[i]) / (behind[i] + 1 + ahead[i]);
      // Not all of it, for the sake of rounding.
      added_[i] = std::min(most, spare * (1 - rounding));
      extents_[i] += added_[i];
    }
  }

  void relax() {
    const auto count = order_.size();
    const auto lowest = lowestPlaces();
    const auto highest = highestPlaces();
    const auto wish = [&](std::size_t i) { return wishes_[i] - extents_[i] / 2; };
    // Once the first come first, once the last: each way some are pushed. What lies half-way between two
    // arrangements in the same order is one too, and there everybody gives way by the same.
    std::vector<double> forward(count);
    std::vector<double> backward(count);
    for (std::size_t i = 0; i < count; ++i) {
      forward[i] = std::max(firstPlace(i, forward), std::min(wish(i), highest[i]));
    }
    for (std::size_t i = count; i-- > 0;) {
      backward[i] = std::min(lastPlace(i, backward), std::max(wish(i), lowest[i]));
    }
    at_.resize(count);
    for (std::size_t i = 0; i < count; ++i) at_[i] = (forward[i] + backward[i]) / 2;
    // Some gave way further than their neighbours needed in the end.
    for (int sweep = 0; sweep < sweeps; ++sweep) {
      for (std::size_t step = 0; step < count; ++step) {
        const auto i = sweep % 2 == 0 ? step : count - 1 - step;
        const double low = firstPlace(i, at_);
        const double high = lastPlace(i, at_);
        if (low < high) at_[i] = std::clamp(wish(i), low, high);
      }
    }
  }

  void store(Places& places) const {
    for (std::size_t i = 0; i < order_.size(); ++i) places[order_[i]].x = at_[i] + added_[i] / 2;
  }

 private:
  /// The first place that the boxes before this one leave it, and the last that those after it do.
  [[nodiscard]] double firstPlace(std::size_t i, const std::vector<double>& at) const {
    double place = 0;
    for (const auto before : before_.of(i)) place = std::max(place, at[before] + extents_[before]);
    return place;
  }
  [[nodiscard]] double lastPlace(std::size_t i, const std::vector<double>& at) const {
    double place = room_ - extents_[i];
    for (const auto after : after_.of(i)) place = std::min(place, at[after] - extents_[i]);
    return place;
  }
  /// With everybody as far to the one side as can be, and to the other.
  [[nodiscard]] std::vector<double> lowestPlaces() const {
    std::vector<double> places(order_.size());
    for (std::size_t i = 0; i < places.size(); ++i) places[i] = firstPlace(i, places);
    return places;
  }
  [[nodiscard]] std::vector<double> highestPlaces() const {
    std::vector<double> places(order_.size());
    for (std::size_t i = places.size(); i-- > 0;) places[i] = lastPlace(i, places);
    return places;
  }

  // A line sweeps down; the boxes that it cuts stand side by side, and each new neighbourship is noted. Who keeps
  // to these keeps clear of all others.
  void findNeighbours(const Task& task, const Places& places) {
    struct Event {
      double y;
      bool opens;
      std::size_t rank;
    };
    std::vector<Event> events;
    events.reserve(2 * order_.size());
    for (std::size_t i = 0; i < order_.size(); ++i) {
      const double top = places[order_[i]].y;
      events.push_back({top, true, i});
      events.push_back({top + task.boxes[order_[i]].height - rounding * task.room.height, false, i});
    }
    std::sort(events.begin(), events.end(), [](const Event& a, const Event& b) {
      return std::tie(a.y, a.opens, a.rank) < std::tie(b.y, b.opens, b.rank);
    });
    const auto link = [&](std::size_t left, std::size_t right) {
      after_.add(left, right);
      before_.add(right, left);
    };
    std::vector<std::size_t> open;
    for (const auto& event : events) {
      const auto at = std::lower_bound(open.begin(), open.end(), event.rank);
      if (event.opens) {
        if (at != open.begin()) link(*(at - 1), event.rank);
        if (at != open.end()) link(event.rank, *at);
        open.insert(at, event.rank);
      } else {
        const auto next = open.erase(at);
        if (next != open.begin() && next != open.end()) link(*(next - 1), *next);
      }
    }
    before_.index(order_.size());
    after_.index(order_.size());
  }

  double room_;
  std::vector<std::size_t> order_;
  /// As far as they have been widened, and by how much.
  std::vector<double> extents_;
  std::vector<double> added_;
  /// Of the centres.
  std::vector<double> wishes_;
  std::vector<double> at_;
  Neighbours before_;
  Neighbours after_;
};

void relaxAlong(const Task& task, double air, Places& places) {
  Line line(task, places);
  line.widen(air);
  line.relax();
  line.store(places);
}

}  // namespace

void relax(const Task& task, double air, Places& places) {
  const Task turned = transposed(task);
  for (int round = 0; round < rounds; ++round) {
    relaxAlong(task, air, places);
    Places other = transposed(places);
    relaxAlong(turned, air, other);
    places = transposed(other);
  }
}

}  // namespace tessaspaces::packing
