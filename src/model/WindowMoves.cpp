#include "model/WindowMoves.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>

#include "bridges/SkyLightBridge.h"
#include "bridges/YabaiBridge.h"
#include "model/Snapshot.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::Spaces {
namespace {

using namespace std::chrono_literals;

/// How long a window may take to arrive before the next method is tried.
constexpr Duration settleTime = 180ms;
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

class MoveRequest {
 public:
  explicit MoveRequest(WindowID window) : window_(window) {
    const std::scoped_lock held(latestMoves().lock);
    number_ = latestMoves().numbers[window_] = ++latestMoves().last;
  }
  ~MoveRequest() {
    const std::scoped_lock held(latestMoves().lock);
    const auto latest = latestMoves().numbers.find(window_);
    if (latest != latestMoves().numbers.end() && latest->second == number_) latestMoves().numbers.erase(latest);
  }
  MoveRequest(const MoveRequest&) = delete;
  MoveRequest& operator=(const MoveRequest&) = delete;

  [[nodiscard]] bool isOver() const {
    if (platform().dispatch().isEnding()) return true;
    const std::scoped_lock held(latestMoves().lock);
    const auto latest = latestMoves().numbers.find(window_);
    // A later one may even have ended already.
    return latest == latestMoves().numbers.end() || latest->second != number_;
  }

 private:
  const WindowID window_;
  std::uint64_t number_ = 0;
};

struct Attempt {
  const char* method;
  std::function<void()> action;
};

}  // namespace

MoveResult tryMove(WindowID window, SpaceID toSpace) {
  const MoveRequest request(window);
  const std::array<WindowID, 1> windows{window};
  const std::array<SpaceID, 1> target{toSpace};
  const std::array<Attempt, 4> attempts{{
      {"SLSBridgedMoveWindowsToManagedSpaceOperation", [&] { SLS::bridgedMoveWindows(windows, toSpace); }},
      {"SLSMoveWindowsToManagedSpace", [&] { SLS::moveWindowsToManagedSpace(windows, toSpace); }},
      {"SLSSetWindowListWorkspace (compat ID)",
       [&] {
         const std::scoped_lock held(compatLock);
         SLS::spaceSetCompatID(toSpace, temporaryCompatID);
         SLS::setWindowListWorkspace(windows, temporaryCompatID);
         SLS::spaceSetCompatID(toSpace, 0);
       }},
      {"SLSAddWindowsToSpaces+SLSRemoveWindowsFromSpaces",
       [&] {
         auto others = workspaces(window);
         others.erase(toSpace);
         SLS::addWindowsToSpaces(windows, target);
         SLS::removeWindowsFromSpaces(windows, std::vector<SpaceID>(others.begin(), others.end()));
       }},
  }};

  for (const auto& attempt : attempts) {
    attempt.action();
    platform().dispatch().sleep(settleTime);
    if (request.isOver()) {
      Log::debug("MOVE: overtaken [{}] -> space {}", window, toSpace);
      return MoveResult::overtaken;
    }
    if (workspaces(window).contains(toSpace)) {
      Log::info("MOVE OK [{}] -> space {} VIA {}", window, toSpace, attempt.method);
      return MoveResult::moved;
    }
  }
  Log::error("MOVE FAILED [{}] -> space {} (likely SIP / newer macOS)", window, toSpace);
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
