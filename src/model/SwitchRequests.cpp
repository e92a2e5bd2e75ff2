#include "model/SwitchRequests.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "bridges/DisplaySpaces.h"
#include "platform/Platform.h"

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
  std::map<std::string, LatestWish> latest;  // by display
  struct UnderWay {
    std::string display;
    SpaceID target = 0;
  };
  std::map<std::uint64_t, UnderWay> underWay;  // by number
  bool turnTaken = false;
};

Wishes& wishes() {
  static Wishes instance;
  return instance;
}

constexpr auto turnPoll = std::chrono::milliseconds(1);

/// Whether a wish concerns the display. Displays that share their desktops all change with one of them.
bool shares(const std::string& display, const SwitchRequest::Successor& wish) {
  if (wish.display == display) return true;
  const auto spaces = allSpaceIDs(display);
  return std::find(spaces.begin(), spaces.end(), wish.target) != spaces.end();
}

}  // namespace

SwitchRequest::SwitchRequest(std::string display, SpaceID target) : wish_{std::move(display), target} {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  wish_.number = ++all.last;
  all.latest[wish_.display] = {wish_.number, wish_.target};
  all.underWay[wish_.number] = {wish_.display, wish_.target};
}

SwitchRequest::~SwitchRequest() {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  all.underWay.erase(wish_.number);
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
    if (!shares(wish.display, successor)) continue;
    if (successor.target == wish.target) return std::nullopt;
    return std::move(successor);
  }
  return std::nullopt;
}

std::function<bool()> SwitchRequest::overtakingFromNow(std::string display, SpaceID target) {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  return [wish = Wish{std::move(display), target, all.last}] { return successorOf(wish).has_value(); };
}

bool SwitchRequest::followsUnfinished() const {
  std::vector<Successor> earlier;
  {
    auto& all = wishes();
    const std::scoped_lock held(all.lock);
    for (const auto& [number, other] : all.underWay) {
      if (number < wish_.number && other.target != wish_.target) earlier.push_back({other.display, other.target});
    }
  }
  return std::any_of(earlier.begin(), earlier.end(),
                     [&](const Successor& other) { return shares(wish_.display, other); });
}

std::unique_ptr<SwitchRequest::Turn> SwitchRequest::takeTurn() const {
  auto& all = wishes();
  while (true) {
    if (overtakenBy() || platform().dispatch().isEnding()) return nullptr;
    {
      const std::scoped_lock held(all.lock);
      if (!std::exchange(all.turnTaken, true)) return std::unique_ptr<Turn>(new Turn);
    }
    platform().dispatch().sleep(turnPoll);
  }
}

SwitchRequest::Turn::~Turn() {
  auto& all = wishes();
  const std::scoped_lock held(all.lock);
  all.turnTaken = false;
}

}  // namespace tessaspaces::Spaces
