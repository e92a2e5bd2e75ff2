#include "bridges/DesktopEditing.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <vector>

#include "bridges/DesktopRenumbering.h"
#include "bridges/DisplaySpaces.h"
#include "bridges/SystemVersion.h"
#include "bridges/YabaiBridge.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::Spaces {
namespace {

using namespace std::chrono_literals;

constexpr auto patience = 1s;
constexpr auto pollInterval = 10ms;

std::atomic<bool> underWay = false;

/// Holds the right to change desktops, if it was free.
class Turn {
 public:
  Turn() : taken_(!underWay.exchange(true)) {}
  ~Turn() {
    if (taken_) underWay = false;
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  [[nodiscard]] bool taken() const { return taken_; }

 private:
  const bool taken_;
};

/// The user desktops among the display's spaces; absent when the display is unknown.
std::optional<std::vector<ManagedSpace>> userDesktops(const std::string& displayUUID) {
  auto display = managedDisplay(displayUUID);
  if (!display || !display->spaces) return std::nullopt;
  std::erase_if(*display->spaces, [](const auto& space) { return !idOf(space) || space.type.value_or(0) != 0; });
  return std::move(display->spaces);
}

std::vector<SpaceID> idsOf(const std::vector<ManagedSpace>& spaces) {
  std::vector<SpaceID> ids;
  for (const auto& space : spaces) ids.push_back(idOf(space).value_or(0));
  return ids;
}

bool contains(const std::vector<SpaceID>& ids, SpaceID space) {
  return std::find(ids.begin(), ids.end(), space) != ids.end();
}

/// The display's user desktops once they are as wished, else as they are at the end of the patience or the program.
std::vector<SpaceID> awaitDesktops(const std::string& displayUUID,
                                   const std::function<bool(const std::vector<SpaceID>&)>& wished) {
  auto& dispatch = platform().dispatch();
  const auto deadline = dispatch.now() + patience;
  for (;;) {
    auto now = idsOf(userDesktops(displayUUID).value_or(std::vector<ManagedSpace>()));
    if (wished(now) || dispatch.now() >= deadline || dispatch.isEnding()) return now;
    dispatch.sleep(pollInterval);
  }
}

bool asksYabai() {
  return askYabaiFirst() && YabaiBridge::isAvailable();
}

bool requestAdding(const std::string& displayUUID) {
  if (platform().windowServer().addSpace(displayUUID)) return true;
  if (!asksYabai()) return false;
  // yabai adds to the display that has the focus.
  const auto shown = currentSpaceID(displayUUID);
  const auto focused = YabaiBridge::focusSpace(shown);
  if (focused != YabaiBridge::FocusResult::switched && focused != YabaiBridge::FocusResult::alreadyThere) return false;
  return YabaiBridge::createSpace();
}

bool requestRemoval(const std::string& displayUUID, SpaceID space) {
  if (platform().windowServer().removeSpace(displayUUID, space)) return true;
  if (!asksYabai()) return false;
  const auto index = YabaiBridge::index(space);
  return index && YabaiBridge::destroySpace(*index);
}

DesktopRemoval remove(const std::string& displayUUID, SpaceID space) {
  const Turn turn;
  if (!turn.taken()) return DesktopRemoval::anotherIsUnderWay;
  const auto desktops = userDesktops(displayUUID);
  if (!desktops) return DesktopRemoval::noSuchDesktop;
  const auto before = idsOf(*desktops);
  if (!contains(before, space)) {
    return contains(allSpaceIDs(displayUUID), space) ? DesktopRemoval::fullScreenSpace : DesktopRemoval::noSuchDesktop;
  }
  if (before.size() == 1) return DesktopRemoval::lastDesktop;
  if (!requestRemoval(displayUUID, space)) return DesktopRemoval::unsupported;

  // A number goes to the next desktop; any other id has to be gone itself.
  const bool numbered = areNumbers(*desktops);
  auto left = before;
  numbered ? left.pop_back() : static_cast<void>(std::erase(left, space));
  const auto after = awaitDesktops(displayUUID, [&](const auto& now) { return now == left; });
  if (after != left) {
    Log::debug("MCSPACES: desktops of display {}: before={}, after={}", displayUUID, before.size(), after.size());
    return DesktopRemoval::notRemoved;
  }
  if (numbered) renumberNames(before, space);
  return DesktopRemoval::removed;
}

}  // namespace

std::optional<std::string_view> failureText(DesktopRemoval outcome) {
  switch (outcome) {
    case DesktopRemoval::removed: break;
    case DesktopRemoval::noSuchDesktop: return "there is no such desktop";
    case DesktopRemoval::fullScreenSpace: return "a full-screen application's space cannot be removed";
    case DesktopRemoval::lastDesktop: return "the last desktop cannot be removed";
    case DesktopRemoval::unsupported: return "the window manager does not let desktops be removed";
    case DesktopRemoval::notRemoved: return "the window manager did not remove the desktop";
    case DesktopRemoval::anotherIsUnderWay: return "desktops are being changed already";
  }
  return std::nullopt;
}

std::optional<SpaceID> addDesktop(const std::string& displayUUID) {
  const auto refused = [&](std::string_view reason) {
    Log::warning("MCSPACES: no desktop added to display {}: {}", displayUUID, reason);
    return std::nullopt;
  };
  const Turn turn;
  if (!turn.taken()) return refused("desktops are being changed already");
  const auto desktops = userDesktops(displayUUID);
  if (!desktops) return refused("there is no such display");
  const auto before = idsOf(*desktops);
  if (!requestAdding(displayUUID)) return refused("the window manager does not let desktops be added");

  std::vector<SpaceID> added;
  const auto after = awaitDesktops(displayUUID, [&](const auto& now) {
    added.clear();
    std::copy_if(now.begin(), now.end(), std::back_inserter(added), [&](SpaceID id) { return !contains(before, id); });
    return now.size() == before.size() + 1 && added.size() == 1;
  });
  if (after.size() != before.size() + 1 || added.size() != 1) {
    return refused(
        fmt::format("the window manager did not add one (before={}, after={})", before.size(), after.size()));
  }
  Log::info("MCSPACES: added desktop {} to display {}", added.front(), displayUUID);
  return added.front();
}

DesktopRemoval removeDesktop(const std::string& displayUUID, SpaceID space) {
  const auto outcome = remove(displayUUID, space);
  if (const auto reason = failureText(outcome)) {
    Log::warning("MCSPACES: desktop {} of display {} not removed: {}", space, displayUUID, *reason);
  } else {
    Log::info("MCSPACES: removed desktop {} of display {}", space, displayUUID);
  }
  return outcome;
}

}  // namespace tessaspaces::Spaces
