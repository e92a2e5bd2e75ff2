#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/Dispatch.h"
#include "platform/simulated/SimulatedOperation.h"
#include "platform/simulated/WorldState.h"

namespace tessaspaces {

/// Describes a space to make.
struct SpaceSetup {
  std::string name;
  /// 0 is an ordinary desktop, 4 a full-screen application's space.
  std::int64_t type = 0;
  /// Absent: a made-up one, "UUID-" and the id; empty: the space has none, as on X11.
  std::optional<std::string> uuid;
};

/// Describes a display to make.
struct DisplaySetup {
  /// Also the identifier text; must not be taken.
  std::string name;
  Size size{1920, 1080};
  /// Origin at the first display's top left; absent: right beside the last display. The first is at the origin.
  std::optional<Point> topLeft;
  std::vector<SpaceSetup> spaces{SpaceSetup{}};
  /// Index into `spaces`.
  std::size_t current = 0;
  bool builtIn = false;
  double scale = 1;
  /// Height of a panel at the top, which visibleFrame leaves out.
  double panelHeight = 0;
};

/// Describes a window to make.
struct WindowSetup {
  std::string title;
  std::int32_t pid = 0;
  /// 0: the space that the first display shows.
  SpaceID space = 0;
  /// Frame, origin at the first display's top left.
  Rect bounds{100, 100, 640, 480};
  int layer = 0;
  bool sticky = false;
  bool desktopElement = false;
  bool fullScreen = false;
};

/// What the outside sees happen; announced by the platform's signals.
enum class WorldEvent { spaces, windows, screens, windowManager };

/// The embedded window server's inside: everything that is not this program (the user, other programs, the
/// hardware) acts through these calls. Numbers are given in the order of creation: spaces and displays from 1,
/// windows from 101. Each change is announced by the platform's signals, from the main queue, once for several
/// changes in a row. Any thread. A display that mirrors another has no spaces of its own to report.
class SimulatedWorld {
 public:
  /// Runs something outside the program once a delay has passed.
  using Later = std::function<void(Duration, std::function<void()>)>;

  SimulatedWorld(Dispatch& dispatch, Later later);

  // Displays. Names that do not exist are a fatal stop here: the caller made them up.
  void addDisplay(DisplaySetup setup);
  /// Its spaces, with their windows, go to the first display that is left.
  void removeDisplay(std::string_view name);
  void resizeDisplay(std::string_view name, Size size);
  /// Not the first: that one is the origin.
  void moveDisplay(std::string_view name, Point topLeft);
  /// `name` mirrors `master` from now on; an empty master ends it.
  void mirrorDisplay(std::string_view name, std::string_view master);

  // Spaces.
  SpaceID addSpace(std::string_view display, SpaceSetup setup = {});
  /// Its windows, and the display when it shows it, go to the space before it (the next one for the first).
  void removeSpace(SpaceID space);
  /// Adds spaces to or removes them from the end. At least 1.
  void setSpaceCount(std::string_view display, std::size_t count);
  /// The user goes there by the system's own means: faults do not apply.
  void showSpace(SpaceID space);
  /// The first space of this name; 0 when there is none.
  [[nodiscard]] SpaceID spaceNamed(std::string_view name) const;
  /// The space that the display shows; 0 when there is no such display.
  [[nodiscard]] SpaceID currentSpace(std::string_view display) const;

  // Windows and applications.
  /// In front of all others; not focused.
  WindowID addWindow(WindowSetup setup);
  void removeWindow(WindowID window);
  /// Somebody else puts it on one space alone.
  void placeWindow(WindowID window, SpaceID space);
  /// The user clicks it: its space is shown, it comes to the front, its application is frontmost.
  void focusWindow(WindowID window);
  [[nodiscard]] std::vector<SpaceID> spacesOf(WindowID window) const;
  /// Replaces an application of the same pid.
  void addApplication(ApplicationInfo info, ImageRef icon = nullptr);
  /// Its windows go with it.
  void removeApplication(std::int32_t pid);
  /// Without a window being focused; absent: no application is frontmost.
  void setFrontmost(std::optional<std::int32_t> pid);

  /// Bottom-left origin, as Screens::pointer reports it.
  void setPointer(Point pointer);
  /// The window manager's name; absent when none runs any more.
  void setWindowManager(std::optional<std::string> name);

  /// Changes anything at all, in one step, and announces what differs afterwards. `change` does not call the world.
  void edit(const std::function<void(WorldState&)>& change);
  /// The same once `delay` has passed.
  void editLater(Duration delay, std::function<void(WorldState&)> change);
  /// What there is now; stays as it is while the world goes on.
  [[nodiscard]] std::shared_ptr<const WorldState> state() const;

  // Faults and hooks.
  void setFaults(SimulatedFaults faults);
  void editFaults(const std::function<void(SimulatedFaults&)>& change);
  /// Runs `happening` once, just before the next such call is answered: a window that vanishes half-way.
  void beforeNext(Operation operation, std::function<void()> happening);

  // The call log: what the program asked, in order, as "name(arg, [list], ...)", for instance
  // "bridgedSetCurrentSpace(left, 2)" or "moveWindowsToManagedSpace([7], 3)". Keeps the last 10000.
  [[nodiscard]] std::vector<std::string> calls() const;
  /// The calls of one operation among them.
  [[nodiscard]] std::vector<std::string> calls(Operation operation) const;
  [[nodiscard]] bool asked(Operation operation) const { return !calls(operation).empty(); }
  void clearCalls();

  // For the platform's own interfaces: the program asks.
  /// Logs a query; false when it is to get no answer.
  bool ask(Operation operation, std::string_view arguments = {});
  /// Logs a request and carries it out, now or later, unless a fault says otherwise.
  void request(Operation operation, std::string_view arguments, std::function<void(WorldState&)> effect);
  /// What the calling thread reads: the state now, or that of its outermost read scope.
  [[nodiscard]] std::shared_ptr<const WorldState> view() const;
  [[nodiscard]] std::unique_ptr<ReadScope> openReadScope();
  [[nodiscard]] SimulatedFaults faults() const;
  [[nodiscard]] TimePoint now() const { return dispatch_.now(); }
  /// Told on the main thread of what happened. Set once, before anything happens.
  void setObserver(std::function<void(WorldEvent)> observer) { observer_ = std::move(observer); }

 private:
  struct Call {
    Operation operation;
    std::string text;
  };
  struct OpenScope {
    int depth = 0;
    std::shared_ptr<const WorldState> state;
  };
  class Scope;

  void announce(WorldEvent event);  // with lock_ held
  void closeReadScope(std::thread::id thread);
  /// Logs the call and runs what was to happen before it.
  void record(Operation operation, std::string_view arguments);

  Dispatch& dispatch_;
  Later later_;
  std::function<void(WorldEvent)> observer_;
  mutable std::mutex lock_;  // guards all below; the state itself is replaced, never changed
  std::shared_ptr<const WorldState> state_ = std::make_shared<WorldState>();
  SimulatedFaults faults_;
  std::multimap<Operation, std::function<void()>> beforeNext_;
  std::deque<Call> calls_;
  std::set<WorldEvent> announced_;
  std::map<std::thread::id, OpenScope> scopes_;
};

}  // namespace tessaspaces
