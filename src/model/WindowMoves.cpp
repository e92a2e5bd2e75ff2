#include "model/WindowMoves.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

#include "bridges/SkyLightBridge.h"
#include "bridges/YabaiBridge.h"
#include "model/Snapshot.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::Spaces {
namespace {

/// The marker that the window server's older move call finds the target space by; the value is fixed.
constexpr std::int32_t temporaryCompatID = 0x79616265;

/// There is one such marker for all moves: held while it names a space, and neither over a wait nor a log line.
std::mutex compatLock;

/// Which move of each window is the latest: an earlier one must not take the window back.
struct LatestMoves {
  std::mutex lock;  // guards both
  std::uint64_t last = 0;
  std::map<WindowID, std::uint64_t> numbers;
};

LatestMoves& latestMoves() {
  static LatestMoves instance;
  return instance;
}

struct Method {
  const char* name;
  void (*ask)(WindowID window, SpaceID toSpace);
};

void askBridged(WindowID window, SpaceID toSpace) {
  SLS::bridgedMoveWindows({&window, 1}, toSpace);
}

void askManagedSpace(WindowID window, SpaceID toSpace) {
  SLS::moveWindowsToManagedSpace({&window, 1}, toSpace);
}

void askByCompatID(WindowID window, SpaceID toSpace) {
  const std::scoped_lock held(compatLock);
  SLS::spaceSetCompatID(toSpace, temporaryCompatID);
  SLS::setWindowListWorkspace({&window, 1}, temporaryCompatID);
  SLS::spaceSetCompatID(toSpace, 0);
}

void askByAddingAndRemoving(WindowID window, SpaceID toSpace) {
  auto others = workspaces(window);
  others.erase(toSpace);
  SLS::addWindowsToSpaces({&window, 1}, {&toSpace, 1});
  SLS::removeWindowsFromSpaces({&window, 1}, std::vector<SpaceID>(others.begin(), others.end()));
}

constexpr Method methods[] = {
    {"SLSBridgedMoveWindowsToManagedSpaceOperation", askBridged},
    {"SLSMoveWindowsToManagedSpace", askManagedSpace},
    {"SLSSetWindowListWorkspace (compat ID)", askByCompatID},
    {"SLSAddWindowsToSpaces+SLSRemoveWindowsFromSpaces", askByAddingAndRemoving},
};

MoveResult tryMove(WindowID window, SpaceID toSpace) {
  WindowMove moving(window, toSpace);
  moving.start();
  return moving.finish();
}

}  // namespace

WindowMove::WindowMove(WindowID window, SpaceID toSpace) : window_(window), toSpace_(toSpace) {
  const std::scoped_lock held(latestMoves().lock);
  number_ = latestMoves().numbers[window_] = ++latestMoves().last;
}

WindowMove::~WindowMove() {
  const std::scoped_lock held(latestMoves().lock);
  const auto latest = latestMoves().numbers.find(window_);
  if (latest != latestMoves().numbers.end() && latest->second == number_) latestMoves().numbers.erase(latest);
}

bool WindowMove::isOver() const {
  if (platform().dispatch().isEnding()) return true;
  const std::scoped_lock held(latestMoves().lock);
  const auto latest = latestMoves().numbers.find(window_);
  // A later one may even have ended already.
  return latest == latestMoves().numbers.end() || latest->second != number_;
}

void WindowMove::start() {
  methods[0].ask(window_, toSpace_);
  started_ = platform().dispatch().now();
}

MoveResult WindowMove::finish() {
  auto& dispatch = platform().dispatch();
  for (const auto& method : methods) {
    if (&method != &methods[0]) {
      method.ask(window_, toSpace_);
      dispatch.sleep(settleTime);
    } else if (const auto left = started_ + settleTime - dispatch.now(); left > Duration::zero()) {
      dispatch.sleep(left);
    }
    if (isOver()) {
      Log::debug("MOVE: overtaken [{}] -> space {}", window_, toSpace_);
      return MoveResult::overtaken;
    }
    if (workspaces(window_).contains(toSpace_)) {
      Log::info("MOVE OK [{}] -> space {} VIA {}", window_, toSpace_, method.name);
      return MoveResult::moved;
    }
  }
  Log::error("MOVE FAILED [{}] -> space {} (likely SIP / newer macOS)", window_, toSpace_);
  return MoveResult::failed;
}

bool move(WindowID window, SpaceID toSpace) {
  return tryMove(window, toSpace) == MoveResult::moved;
}

MoveResult tryMoveOtherAppWindow(WindowID window, SpaceID toSpace) {
  if (movesWindowsNatively()) return tryMove(window, toSpace);
  return YabaiBridge::moveWindow(window, toSpace) ? MoveResult::moved : MoveResult::failed;
}

bool moveOtherAppWindow(WindowID window, SpaceID toSpace) {
  return tryMoveOtherAppWindow(window, toSpace) == MoveResult::moved;
}

}  // namespace tessaspaces::Spaces
