#include "bridges/GestureSwitch.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

#include "bridges/DisplaySpaces.h"
#include "bridges/GestureFocus.h"
#include "bridges/PointerVisit.h"
#include "bridges/SwipeEvents.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::GestureSwitch {
namespace {

using namespace std::chrono_literals;

constexpr int arrivalPolls = 100;
constexpr Duration pollInterval = 10ms;
/// From here on a burst is quicker than waiting for each desktop on the way.
constexpr std::size_t burstDistance = 2;

/// Also when the program is ending: then it no longer waits, and what it does not see come has not failed.
bool isOvertaken(const Overtaken& overtaken) {
  return platform().dispatch().isEnding() || (overtaken && overtaken());
}

/// Counts the switches; whoever keeps a display in its place sees by it that a newer one has begun.
std::atomic<std::uint64_t> switchGeneration = 0;

std::optional<std::size_t> positionOf(const std::vector<SpaceID>& ids, SpaceID space) {
  const auto found = std::find(ids.begin(), ids.end(), space);
  if (found == ids.end()) return std::nullopt;
  return static_cast<std::size_t>(found - ids.begin());
}

Direction towards(std::size_t from, std::size_t to) {
  return from < to ? Direction::right : Direction::left;
}

Direction turned(Direction direction) {
  return direction == Direction::right ? Direction::left : Direction::right;
}

/// One switch from its start to its end.
class Drive {
 public:
  Drive(const DesktopInfo& target, std::vector<SpaceID> ids, std::size_t targetIndex, const Overtaken& overtaken)
      : target_(target), ids_(std::move(ids)), targetIndex_(targetIndex), overtaken_(overtaken) {}

  /// Whether the display changed.
  bool run() {
    burst();
    for (std::size_t pass = 0; pass < ids_.size() + 2 && step(); ++pass) {
    }
    return moved_;
  }
  [[nodiscard]] bool overtaken() const { return isOvertaken(overtaken_); }

 private:
  SpaceID current() const { return Spaces::currentSpaceID(target_.displayUUID); }

  /// Absent when the switch was overtaken, or no swipe would reach the display: there is nothing left to do.
  std::optional<bool> post(Direction direction) {
    if (overtaken() || !pointer_.goTo(target_)) {
      over_ = true;
      return std::nullopt;
    }
    return swipe(flip_ ? turned(direction) : direction);
  }

  template <class Arrived>
  SpaceID pollUntil(Arrived arrived) {
    SpaceID last = current();
    for (int poll = 1; poll < arrivalPolls && !arrived(last) && !overtaken(); ++poll) {
      platform().dispatch().sleep(pollInterval);
      last = current();
    }
    return last;
  }
  SpaceID waitFor(SpaceID space) {
    return pollUntil([space](SpaceID now) { return now == space; });
  }
  SpaceID waitForChange(SpaceID from) {
    return pollUntil([from](SpaceID now) { return now != from; });
  }

  void burst() {
    const auto before = current();
    const auto position = positionOf(ids_, before);
    if (!position) return;
    const auto distance = *position < targetIndex_ ? targetIndex_ - *position : *position - targetIndex_;
    if (distance < burstDistance) return;
    for (std::size_t i = 0; i < distance; ++i) {
      if (!post(towards(*position, targetIndex_))) {
        moved_ = current() != before;
        return;
      }
      platform().dispatch().sleep(burstGap);
    }
    const auto after = waitFor(target_.spaceID);
    moved_ = after != before;
    if (overtaken()) return;
    Log::debug("SWITCH: GESTURE burst {} -> {} (target={}) steps={}", before, after, target_.spaceID, distance);
  }

  /// False when there is no other to take.
  bool step() {
    if (over_) return false;
    const auto before = current();
    const auto position = positionOf(ids_, before);
    if (!position || *position == targetIndex_) return false;
    const auto direction = towards(*position, targetIndex_);
    const auto posted = post(direction);
    if (!posted) return false;
    const auto now = waitForChange(before);
    if (now != before) moved_ = true;
    if (overtaken()) return false;
    Log::debug("SWITCH: GESTURE step {} -> {} (target={}) posted={}", before, now, target_.spaceID, *posted);
    if (now == before) return false;
    const auto newPosition = positionOf(ids_, now);
    if (newPosition && towards(*position, *newPosition) != direction) {
      flip_ = !flip_;
      Log::warning("SWITCH: GESTURE moved away from target, direction flipped (naturalScrolling={})",
                   naturalScrolling_);
    }
    return true;
  }

  const DesktopInfo& target_;
  const std::vector<SpaceID> ids_;
  const std::size_t targetIndex_;
  const Overtaken& overtaken_;
  const bool naturalScrolling_ = platform().preferences().naturalScrolling();
  bool flip_ = !naturalScrolling_;
  bool moved_ = false;
  bool over_ = false;
  PointerVisit pointer_;
};

/// `generation` is the one that this switch has begun; `overtakenLater` may be asked after this has returned.
bool drive(const DesktopInfo& target, std::uint64_t generation, const Overtaken& overtaken,
           const Overtaken& overtakenLater) {
  auto ids = Spaces::allSpaceIDs(target.displayUUID);
  const auto targetIndex = positionOf(ids, target.spaceID);
  if (!targetIndex) {
    Log::warning("SWITCH: GESTURE target {} not in display order", target.spaceID);
    return false;
  }
  Drive drive(target, std::move(ids), *targetIndex, overtaken);
  const bool moved = drive.run();
  if (moved && !drive.overtaken() && Spaces::currentSpaceID(target.displayUUID) == target.spaceID) {
    claimActivation(target, [generation, overtakenLater] {
      return switchGeneration == generation && !(overtakenLater && overtakenLater());
    });
  }
  return moved;
}

/// Keeps one display on its target.
class Keeper {
 public:
  Keeper(const DesktopInfo& target, const Overtaken& overtaken) : target_(target), overtaken_(overtaken) {}

  void run() {
    for (int attempt = 1; attempt <= maxCorrections + 1; ++attempt) {
      const auto current = watch();
      if (current == target_.spaceID || !ownsDisplay() || !canReturn(current)) return;
      if (attempt > maxCorrections) break;
      if (!correct(current, attempt)) return;
    }
    Log::warning("SWITCH: GESTURE could not hold target {} after {} corrections", target_.spaceID, maxCorrections);
  }

 private:
  [[nodiscard]] bool ownsDisplay() const { return switchGeneration == generation_ && !isOvertaken(overtaken_); }

  /// Not when the display has been unplugged, or the target removed: nothing drags it away then.
  [[nodiscard]] bool canReturn(SpaceID current) const {
    return current != 0 && positionOf(Spaces::allSpaceIDs(target_.displayUUID), target_.spaceID);
  }

  /// What the display shows when it leaves the target, or else in the end.
  SpaceID watch() const {
    auto& dispatch = platform().dispatch();
    const auto end = dispatch.now() + settleTime;
    auto current = Spaces::currentSpaceID(target_.displayUUID);
    while (ownsDisplay() && current == target_.spaceID && dispatch.now() < end) {
      dispatch.sleep(pollInterval);
      current = Spaces::currentSpaceID(target_.displayUUID);
    }
    return current;
  }

  /// False when a newer switch has begun.
  bool correct(SpaceID current, int attempt) {
    const auto application = platform().applications().frontmost();
    const auto identifier = application ? application->bundleIdentifier : std::nullopt;
    Log::warning("SWITCH: GESTURE yanked {} -> {} frontApp={}, correcting (attempt {})", target_.spaceID, current,
                 identifier.value_or("?"), attempt);
    claimActivationBeforeCorrection(target_, [this] { return ownsDisplay(); });
    if (isOvertaken(overtaken_)) return false;
    // This begins a generation as every switch does, but never on top of a newer one.
    auto expected = generation_;
    if (!switchGeneration.compare_exchange_strong(expected, generation_ + 1)) return false;
    ++generation_;
    const auto moved = drive(
        target_, generation_, [this] { return !ownsDisplay(); }, overtaken_);
    if (moved && ownsDisplay()) focusTarget(target_, overtaken_);
    return ownsDisplay();
  }

  const DesktopInfo& target_;
  const Overtaken& overtaken_;
  std::uint64_t generation_ = switchGeneration;
};

}  // namespace

bool perform(const DesktopInfo& target, const Overtaken& overtaken) {
  return drive(target, ++switchGeneration, overtaken, overtaken);
}

void settle(const DesktopInfo& target, const Overtaken& overtaken) {
  Keeper(target, overtaken).run();
}

}  // namespace tessaspaces::GestureSwitch
