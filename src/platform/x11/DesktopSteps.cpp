#include "platform/x11/DesktopSteps.h"

#include <algorithm>

namespace tessaspaces {

std::optional<SpaceID> PendingSteps::next(std::string_view display, std::span<const SpaceID> spaces, SpaceID shown,
                                          SwipeSide side, Time now) {
  const auto seen = std::find(path_.begin(), path_.end(), shown);
  if (display == display_ && seen != path_.end() && now - asked_ < patience) {
    path_.erase(path_.begin(), seen);
  } else {
    path_ = {shown};
    display_ = display;
  }
  const auto from = std::find(spaces.begin(), spaces.end(), path_.back());
  const auto atEnd =
      from == spaces.end() || (side == SwipeSide::left ? from == spaces.begin() : std::next(from) == spaces.end());
  if (atEnd) return std::nullopt;
  path_.push_back(side == SwipeSide::left ? *std::prev(from) : *std::next(from));
  asked_ = now;
  return path_.back();
}

std::optional<std::string> PendingSteps::display() const {
  return path_.size() > 1 ? std::optional(display_) : std::nullopt;
}

void PendingSteps::arrived(std::string_view display, SpaceID shown) {
  if (display != display_) return;
  // Only ever forward: an older look may be told after a newer one.
  const auto seen = std::find(path_.begin(), path_.end(), shown);
  if (seen != path_.end()) path_.erase(path_.begin(), seen);
}

DesktopSteps::DesktopSteps(X11WindowServer& server, X11Screens& screens)
    : server_(server), screens_(screens), changes_(server.spacesChanged.connect([this] { lookForArrival(); })) {
  // Whoever swipes also looks, and may see an arrival that is over again before its event is dealt with.
  server.onLook([this](std::string_view display, SpaceID shown) {
    const std::lock_guard lock(mutex_);
    pending_.arrived(display, shown);
  });
}

void DesktopSteps::step(SwipeSide side) {
  const auto name = displayUnderPointer();
  const auto displays = server_.copyManagedDisplaySpaces();
  if (!name || !displays) return;
  const auto display = std::find_if(displays->begin(), displays->end(),
                                    [&](const ManagedDisplay& each) { return each.displayIdentifier == name; });
  if (display == displays->end() || !display->spaces || !display->currentSpace) return;
  std::vector<SpaceID> spaces;
  for (const auto& space : *display->spaces) spaces.push_back(space.id64.value_or(0));
  std::optional<SpaceID> target;
  {
    const std::lock_guard lock(mutex_);
    target =
        pending_.next(*name, spaces, display->currentSpace->id64.value_or(0), side, std::chrono::steady_clock::now());
  }
  if (target) server_.performBridged(SetCurrentSpace{*name, *target});
}

std::optional<std::string> DesktopSteps::displayUnderPointer() {
  const auto layout = screens_.layout();
  const auto pointer = screens_.pointer();
  for (std::size_t i = 0; i < layout->screens.size(); ++i) {
    if (layout->screens[i]->frame.contains(pointer)) return layout->monitors[layout->monitorOf[i]].identifier;
  }
  return std::nullopt;
}

void DesktopSteps::lookForArrival() {
  std::optional<std::string> display;
  {
    const std::lock_guard lock(mutex_);
    display = pending_.display();
  }
  if (display) server_.managedDisplayGetCurrentSpace(*display);
}

}  // namespace tessaspaces
