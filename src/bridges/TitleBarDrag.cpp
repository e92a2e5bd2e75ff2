#include "bridges/TitleBarDrag.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "bridges/OneHand.h"
#include "bridges/SkyLightBridge.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces::TitleBarDrag {
namespace {

using namespace std::chrono_literals;

constexpr auto pollInterval = 10ms;
/// A hot key's modifiers are still down when its command runs, and change what a press on a title bar means.
constexpr auto modifierPatience = 1500ms;
constexpr auto raisePatience = 500ms;
constexpr auto followPatience = 250ms;
constexpr auto carriedPatience = 300ms;
constexpr auto backPatience = 60ms;
constexpr auto settlePatience = 300ms;

/// Where on the title bar to take it, as parts of its width: far from the buttons at the ends first.
constexpr std::array grips{0.5, 0.4, 0.6, 0.3, 0.7, 0.2, 0.8};
/// How far to drag until the window follows, in points: beyond the distance below which window managers take a motion
/// for a shaking hand, then beyond that at which windows stick to a screen edge.
constexpr std::array nudges{12.0, 28.0, 48.0};
/// Window managers look for motion, so a drag goes in steps.
constexpr double nudgeStep = 4;

bool waitUntil(Duration patience, const std::function<bool()>& holds) {
  auto& dispatch = platform().dispatch();
  const auto end = dispatch.now() + patience;
  while (!holds()) {
    if (dispatch.now() >= end || dispatch.isEnding()) return false;
    dispatch.sleep(pollInterval);
  }
  return true;
}

/// Puts the pointer back where it was.
class PointerKeeper {
 public:
  PointerKeeper(InputEvents& input, Point home) : input_(input), home_(home) {}
  ~PointerKeeper() {
    if (!input_.moveMouse(home_)) Log::warning("DRAGSIM: cannot move the pointer back");
  }
  PointerKeeper(const PointerKeeper&) = delete;
  PointerKeeper& operator=(const PointerKeeper&) = delete;

 private:
  InputEvents& input_;
  Point home_;
};

/// Holds the button.
class Press {
 public:
  explicit Press(InputEvents& input) : input_(input), down_(input.pressMouse()) {}
  ~Press() { release(); }
  Press(const Press&) = delete;
  Press& operator=(const Press&) = delete;

  [[nodiscard]] bool isDown() const { return down_; }
  void release() {
    if (!std::exchange(down_, false)) return;
    if (!input_.releaseMouse() && !input_.releaseMouse()) Log::error("DRAGSIM: cannot release the mouse button");
  }

 private:
  InputEvents& input_;
  bool down_;
};

class Drag {
 public:
  Drag(const SpaceWindow& window, AccessibilityWindow& access, const std::function<bool()>& stillWanted)
      : window_(window), access_(access), stillWanted_(stillWanted) {}

  bool carry(const std::function<bool()>& switchDesktop) {
    if (!SLS::carriesHeldWindows()) return refuse("would stay behind: this window manager leaves it where it is");
    if (!handsOff()) return false;
    const auto grip = findGrip();
    if (!grip) return false;
    // Not before all that waiting: the user may have moved either meanwhile.
    start_ = access_.frame();
    if (!start_) return refuse("has no frame");
    const auto home = input_.mouseLocation();
    if (!home) return refuse("cannot be taken: the pointer is nowhere");
    if (!wanted()) return false;

    const PointerKeeper keeper(input_, *home);
    if (!input_.moveMouse(*grip) || input_.mouseLocation() != grip) return refuse("cannot be reached by the pointer");
    const bool held = holdWhile(*grip, switchDesktop);
    putBack();
    return held;
  }

 private:
  /// Says why not.
  bool refuse(std::string_view reason) const {
    Log::warning("DRAGSIM: window [{}] {}", window_.id, reason);
    return false;
  }

  /// Nothing has gone wrong when it is not.
  bool wanted() const {
    if (!platform().dispatch().isEnding() && (!stillWanted_ || stillWanted_())) return true;
    Log::debug("DRAGSIM: window [{}] need not be carried any more", window_.id);
    return false;
  }

  bool handsOff() const {
    std::optional<HeldInput> held;
    const bool free = waitUntil(modifierPatience, [&] {
      held = input_.held();
      return !held || held->button || !held->modifier;
    });
    if (!wanted()) return false;
    if (!held) return refuse("cannot be taken: the system does not tell what is held down");
    if (held->button) return refuse("cannot be taken: a mouse button is down");
    return free || refuse("cannot be taken: a modifier key is down");
  }

  std::optional<Point> freeGrip() const {
    const auto bar = access_.titleBar();
    if (!bar || bar->isEmpty()) return std::nullopt;
    for (const double part : grips) {
      // On a whole pixel, so that it compares with what the system says later.
      const Point point{std::floor(bar->x + bar->width * part), std::floor(bar->center().y)};
      if (access_.isAt(point)) return point;
    }
    return std::nullopt;
  }

  std::optional<Point> findGrip() const {
    if (!access_.titleBar()) {
      refuse("has no title bar");
      return std::nullopt;
    }
    auto grip = freeGrip();
    if (!grip) {
      // Raising a window that is out of sight would take the user to it.
      if (!wanted()) return std::nullopt;
      Log::debug("DRAGSIM: window [{}] is covered, raising it", window_.id);
      access_.raise();
      waitUntil(raisePatience, [&] { return (grip = freeGrip()).has_value(); });
    }
    if (!grip && wanted()) refuse("has a title bar that cannot be seen");
    return grip;
  }

  bool holdWhile(Point grip, const std::function<bool()>& switchDesktop) {
    Press press(input_);
    if (!press.isDown()) return refuse("cannot be taken: the system takes no press");
    Log::debug("DRAGSIM: window [{}] taken at {}, {}", window_.id, grip.x, grip.y);
    if (!startMoving(grip)) {
      input_.moveMouse(grip);
      return !platform().dispatch().isEnding() && refuse("does not follow the pointer");
    }
    // Back at its place, still held: where it is left behind, a window manager may not move it any more.
    input_.moveMouse(grip);
    waitUntil(backPatience, [&] { return isBack(); });
    const std::array id{window_.id};
    const auto before = SLS::copySpacesForWindows(allSpaceKinds, id);
    const bool switched = switchDesktop();
    if (switched) {
      const bool carried =
          waitUntil(carriedPatience, [&] { return SLS::copySpacesForWindows(allSpaceKinds, id) != before; });
      Log::debug("DRAGSIM: window [{}] {}", window_.id, carried ? "came along" : "stayed behind");
    } else {
      refuse("was held, but the desktop did not change");
    }
    press.release();
    return switched;
  }

  bool startMoving(Point grip) {
    double way = 0;
    for (const double nudge : nudges) {
      while (way < nudge) {
        way += nudgeStep;
        if (!input_.moveMouse({grip.x + way, grip.y + way / 2})) return false;
      }
      bool gone = false;
      const bool follows = waitUntil(followPatience, [&] {
        const auto frame = access_.frame();
        gone = !frame;
        return gone || Point{frame->x, frame->y} != Point{start_->x, start_->y};
      });
      if (gone || platform().dispatch().isEnding()) return false;
      if (follows) {
        Log::debug("DRAGSIM: window [{}] follows after {} points", window_.id, way);
        return true;
      }
    }
    return false;
  }

  bool isBack() const {
    const auto frame = access_.frame();
    return !frame || frame == start_;
  }

  void putBack() const {
    if (waitUntil(backPatience, [&] { return isBack(); })) return;
    access_.place(*start_);
    if (!waitUntil(settlePatience, [&] { return isBack(); })) {
      Log::debug("DRAGSIM: window [{}] is not back at its place", window_.id);
    }
  }

  static constexpr int allSpaceKinds = 7;

  const SpaceWindow& window_;
  AccessibilityWindow& access_;
  const std::function<bool()>& stillWanted_;
  InputEvents& input_ = platform().inputEvents();
  std::optional<Rect> start_;
};

}  // namespace

bool carry(const SpaceWindow& window, const std::function<bool()>& switchDesktop,
           const std::function<bool()>& stillWanted) {
  OneHand hand;
  if (!hand.take()) {
    Log::warning("DRAGSIM: window [{}] cannot be taken: the pointer is on its way with something else", window.id);
    return false;
  }
  const auto access = platform().accessibility().find(window.pid, window.id);
  if (!access) {
    Log::warning("DRAGSIM: window [{}] not found via AX", window.id);
    return false;
  }
  return Drag(window, *access, stillWanted).carry(switchDesktop);
}

}  // namespace tessaspaces::TitleBarDrag
