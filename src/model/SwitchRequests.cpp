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

struct Wish {
  std::uint64_t number = 0;
  SpaceID target = 0;
};

struct Wishes {
  /// Guards all below.
  std::mutex lock;
  std::uint64_t last = 0;
  std::map<std::string, Wish> latest;                       // by display
  std::map<std::string, std::set<std::uint64_t>> underWay;  // by display
};

Wishes& wishes() {
  static Wishes instance;
  return instance;
}

}  // namespace

SwitchRequest::SwitchRequest(std::string display, SpaceID target) : display_(std::move(display)), target_(target) {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  number_ = ++all.last;
  all.latest[display_] = {number_, target_};
  all.underWay[display_].insert(number_);
}

SwitchRequest::~SwitchRequest() {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  all.underWay[display_].erase(number_);
}

std::optional<SwitchRequest::Successor> SwitchRequest::overtakenBy() const {
  std::vector<std::pair<std::uint64_t, Successor>> later;
  {
    auto& all = wishes();
    const std::scoped_lock held(all.lock);
    for (const auto& [display, wish] : all.latest) {
      if (wish.number > number_) later.push_back({wish.number, {display, wish.target}});
    }
  }
  std::sort(later.begin(), later.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
  for (auto& [number, successor] : later) {
    // Displays that share their desktops all change with one of them.
    if (successor.display != display_) {
      const auto mine = allSpaceIDs(display_);
      if (std::find(mine.begin(), mine.end(), successor.target) == mine.end()) continue;
    }
    if (successor.target == target_) return std::nullopt;
    return std::move(successor);
  }
  return std::nullopt;
}

bool SwitchRequest::followsUnfinished() const {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  const auto& numbers = all.underWay[display_];
  return !numbers.empty() && *numbers.begin() < number_;
}

}  // namespace tessaspaces::Spaces
