#include "model/SwitchRequests.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "model/Snapshot.h"

namespace tessaspaces::Spaces {
namespace {

struct LatestWish {
  std::uint64_t number = 0;
  SpaceID target = 0;
};

struct Wishes {
  /// Guards all below.
  std::mutex lock;
  std::uint64_t last = 0;
  std::map<std::string, LatestWish> latest;                 // by display
  std::map<std::string, std::set<std::uint64_t>> underWay;  // by display
};

Wishes& wishes() {
  static Wishes instance;
  return instance;
}

}  // namespace

SwitchRequest::SwitchRequest(std::string display, SpaceID target) : wish_{std::move(display), target} {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  wish_.number = ++all.last;
  all.latest[wish_.display] = {wish_.number, wish_.target};
  all.underWay[wish_.display].insert(wish_.number);
}

SwitchRequest::~SwitchRequest() {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  all.underWay[wish_.display].erase(wish_.number);
}

std::optional<SwitchRequest::Successor> SwitchRequest::overtakenBy() const {
  return successorOf(wish_);
}

std::function<bool()> SwitchRequest::overtaking() const {
  return [wish = wish_] { return successorOf(wish).has_value(); };
}

std::optional<SwitchRequest::Successor> SwitchRequest::successorOf(const Wish& wish) {
  std::vector<std::pair<std::uint64_t, Successor>> later;
  {
    auto& all = wishes();
    const std::scoped_lock held(all.lock);
    for (const auto& [display, latest] : all.latest) {
      if (latest.number > wish.number) later.push_back({latest.number, {display, latest.target}});
    }
  }
  std::sort(later.begin(), later.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
  for (auto& [number, successor] : later) {
    // Displays that share their desktops all change with one of them.
    if (successor.display != wish.display) {
      const auto mine = allSpaceIDs(wish.display);
      if (std::find(mine.begin(), mine.end(), successor.target) == mine.end()) continue;
    }
    if (successor.target == wish.target) return std::nullopt;
    return std::move(successor);
  }
  return std::nullopt;
}

bool SwitchRequest::followsUnfinished() const {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  const auto& numbers = all.underWay[wish_.display];
  return !numbers.empty() && *numbers.begin() < wish_.number;
}

}  // namespace tessaspaces::Spaces
