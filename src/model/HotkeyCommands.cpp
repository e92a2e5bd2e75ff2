#include "model/HotkeyCommands.h"

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "bridges/YabaiBridge.h"
#include "model/DisplayScreens.h"
#include "model/DraggedMoves.h"
#include "model/Snapshot.h"
#include "model/WindowMoves.h"
#include "platform/Platform.h"
#include "settings/Log.h"
#include "settings/Settings.h"

namespace tessaspaces::Spaces {
namespace {

/// Holds the questions of one command together; not where another program is asked in between, which takes its time.
std::unique_ptr<ReadScope> beginCommand() {
  return askYabaiFirst() ? nullptr : platform().windowServer().beginRead();
}

std::optional<HotkeyDisplay> desktopsForHotkey() {
  const auto reading = beginCommand();
  const ScreenRef screen = screenWithCursor();
  const auto uuid = displayUUID(screen);
  if (!uuid) {
    Log::error("HOTKEY: no display under the cursor");
    return std::nullopt;
  }
  HotkeyDisplay display{{}, screen, Settings::gridColumns(*uuid), Settings::gridRows(*uuid)};
  // Windows are needed only where a switch may have to activate one of them.
  const bool withWindows = askYabaiFirst() && YabaiBridge::isAvailable();
  for (auto& desktop : enumerate(withWindows ? WithWindows::yes : WithWindows::no).desktops) {
    if (desktop->displayUUID == *uuid) display.snap.desktops.push_back(std::move(desktop));
  }
  return display;
}

/// A move watches its window for a good while: a key held down must not take every background thread for moves
/// and keep switches waiting.
constexpr int maxMovesUnderWay = 3;

/// One of the moves under way, given back when the last copy of what holds it goes, run or not.
class MoveSlot {
 public:
  /// Null when there are too many.
  static std::shared_ptr<MoveSlot> take() {
    auto slot = std::make_shared<MoveSlot>();
    return slot->position_ < maxMovesUnderWay ? slot : nullptr;
  }
  MoveSlot() : position_(taken.fetch_add(1)) {}
  ~MoveSlot() { --taken; }
  MoveSlot(const MoveSlot&) = delete;
  MoveSlot& operator=(const MoveSlot&) = delete;

 private:
  static inline std::atomic<int> taken = 0;
  const int position_;
};

int count(const HotkeyDisplay& display) {
  return static_cast<int>(display.snap.desktops.size());
}

/// Finds the display and the desktop it is on: what every move by direction starts from.
DesktopPlan planFromCurrent() {
  DesktopPlan plan;
  auto display = desktopsForHotkey();
  if (!display) return plan;
  plan.display = std::move(*display);
  plan.fromIndex = firstCurrentIndex(plan.display.snap);
  if (!plan.fromIndex) {
    Log::error("HOTKEY: could not determine current desktop");
    plan.outcome = CommandOutcome::noCurrentDesktop;
    return plan;
  }
  plan.outcome = CommandOutcome::ready;
  return plan;
}

/// Fills in the target of a plan that knows where it starts; false at the edge of the grid.
bool stepTo(DesktopPlan& plan, GridDirection direction) {
  const auto to = neighbor(*plan.fromIndex, direction, count(plan.display), plan.display.columns);
  if (!to) {
    plan.outcome = CommandOutcome::atGridEdge;
    return false;
  }
  plan.toIndex = static_cast<int>(*to);
  plan.target = plan.display.snap.desktops[static_cast<std::size_t>(*to)];
  return true;
}

/// Asks for the window of a plan that is ready to be moved; null where the external window manager is to do it, which
/// takes its time.
std::shared_ptr<WindowMove> beginMove(const WindowMovePlan& plan) {
  if (!movesWindowsNatively()) return nullptr;
  auto move = std::make_shared<WindowMove>(plan.window->id, plan.desktop.target->spaceID);
  move->start();
  return move;
}

bool arrives(const WindowMovePlan& plan, WindowMove* begun) {
  const auto& target = plan.desktop.target;
  if (begun == nullptr) return YabaiBridge::moveFocusedWindow(target->spaceID);
  const auto result = begun->finish();
  if (result != MoveResult::failed) return result == MoveResult::moved;
  // It ignores every request: what is left is what a hand would do.
  const auto& from = plan.desktop.display.snap.desktops[static_cast<std::size_t>(*plan.desktop.fromIndex)];
  return dragAlong(*plan.window, from, target);
}

bool endMove(const WindowMovePlan& plan, WindowMove* begun) {
  const bool moved = arrives(plan, begun);
  Log::info("HOTKEY: move window {} to desktop {} {}", plan.window ? std::to_string(plan.window->id) : "with the focus",
            plan.desktop.toIndex + 1, moved ? "OK" : "FAILED");
  return moved;
}

bool hotkeySwitch(const DesktopPlan& plan, std::optional<GridDirection> direction, SwitchCompletion completion) {
  if (plan.outcome != CommandOutcome::ready) return false;
  switchAnimated(plan.target, direction, std::move(completion));
  return true;
}

}  // namespace

DesktopPlan planSwitchToNeighbor(GridDirection direction) {
  auto plan = planFromCurrent();
  if (plan.outcome != CommandOutcome::ready) return plan;
  if (!stepTo(plan, direction)) {
    Log::debug("HOTKEY: at grid edge ({}), not switching anywhere", name(direction));
    return plan;
  }
  Log::debug("HOTKEY: change space {} — from position {} to {}", name(direction), *plan.fromIndex, plan.toIndex);
  return plan;
}

DesktopPlan planSwitchToDesktop(int number) {
  const auto reading = beginCommand();
  DesktopPlan plan;
  auto display = desktopsForHotkey();
  if (!display) return plan;
  plan.display = std::move(*display);
  if (number < 1 || number > count(plan.display)) {
    Log::warning("HOTKEY: desktop number {} doesn't exist (have {})", number, count(plan.display));
    plan.outcome = CommandOutcome::noSuchDesktop;
    return plan;
  }
  Log::debug("HOTKEY: change space directly to desktop {}", number);
  plan.outcome = CommandOutcome::ready;
  plan.toIndex = number - 1;
  plan.target = plan.display.snap.desktops[static_cast<std::size_t>(plan.toIndex)];
  plan.fromIndex = currentDesktopIndex(plan.display.snap, plan.target->displayUUID);
  return plan;
}

WindowMovePlan planMoveFocusedWindow(GridDirection direction) {
  const auto reading = beginCommand();
  WindowMovePlan plan{planFromCurrent(), std::nullopt};
  if (plan.desktop.outcome != CommandOutcome::ready) return plan;
  if (!stepTo(plan.desktop, direction)) {
    Log::debug("HOTKEY: move window — at grid edge ({}), doing nothing", name(direction));
    return plan;
  }
  const auto refuse = [&](CommandOutcome outcome) {
    plan.desktop.outcome = outcome;
    plan.desktop.target = nullptr;
  };
  if (!movesWindowsNatively()) {
    if (YabaiBridge::isAvailable()) return plan;
    Log::warning(
        "HOTKEY: move window requires yabai (macOS won't otherwise allow moving another app's window between Spaces)");
    refuse(CommandOutcome::unsupported);
    return plan;
  }
  plan.window = focusedWindow();
  if (!plan.window) {
    Log::warning("HOTKEY: move window — no focused window found");
    refuse(CommandOutcome::noFocusedWindow);
  }
  return plan;
}

bool carryOut(const WindowMovePlan& plan) {
  return endMove(plan, beginMove(plan).get());
}

bool switchToNeighbor(GridDirection direction, SwitchCompletion completion) {
  return hotkeySwitch(planSwitchToNeighbor(direction), direction, std::move(completion));
}

bool switchToDesktop(int number, SwitchCompletion completion) {
  return hotkeySwitch(planSwitchToDesktop(number), std::nullopt, std::move(completion));
}

bool moveFocusedWindowToNeighbor(GridDirection direction, SwitchCompletion completion) {
  auto plan = planMoveFocusedWindow(direction);
  if (plan.desktop.outcome != CommandOutcome::ready) return false;
  auto slot = MoveSlot::take();
  if (!slot) {
    Log::warning("HOTKEY: move window — earlier moves are still under way, doing nothing");
    return false;
  }
  // The request goes out here and now, which holds up nobody; what comes of it is another thread's to see. That is not
  // woken before there is something to look at: it would take the processor from those who do the move.
  auto begun = beginMove(plan);
  const auto delay = begun ? WindowMove::settleTime : Duration::zero();
  auto rest = [plan = std::move(plan), begun = std::move(begun), completion = std::move(completion),
               slot = std::move(slot)]() mutable {
    const bool moved = endMove(plan, begun.get());
    begun.reset();
    slot.reset();
    if (completion) platform().dispatch().async([completion, moved] { completion(moved); });
  };
  platform().dispatch().after(
      delay, [rest = std::move(rest)]() mutable { platform().dispatch().background(std::move(rest)); });
  return true;
}

}  // namespace tessaspaces::Spaces
