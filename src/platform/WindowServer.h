#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/Signal.h"

namespace tessaspaces {

/// The window server's number of one desktop (or other space). 0 is never a valid one.
using SpaceID = std::uint64_t;
/// The window server's number of one window.
using WindowID = std::uint32_t;

/// One space of a display as the window server describes it; an absent field was missing there.
struct ManagedSpace {
  std::optional<SpaceID> id64;
  /// The same number under the key that older systems used.
  std::optional<SpaceID> managedSpaceID;
  /// 0 is an ordinary user desktop, anything else a full-screen or system space.
  std::optional<std::int64_t> type;
  std::optional<std::string> name;
  /// Persistent identity; absent on X11, where a desktop is no more than its index.
  std::optional<std::string> uuid;
};

/// One display with its spaces in the user's order.
struct ManagedDisplay {
  /// The same text as Screen::uuid of the screen that shows it.
  std::optional<std::string> displayIdentifier;
  std::optional<ManagedSpace> currentSpace;
  std::optional<std::vector<ManagedSpace>> spaces;
};

/// Operations that the window server executes on the program's behalf, asynchronously.
struct ShowSpaces {
  std::vector<SpaceID> spaces;
};
struct SetCurrentSpace {
  std::string display;
  SpaceID space;
};
struct HideSpaces {
  std::vector<SpaceID> spaces;
};
struct MoveWindowsToSpace {
  std::vector<WindowID> windows;
  SpaceID space;
};
using BridgedOperation = std::variant<ShowSpaces, SetCurrentSpace, HideSpaces, MoveWindowsToSpace>;

/// See WindowServer::beginRead.
class ReadScope {
 public:
  virtual ~ReadScope() = default;
};

/// The private desktop interface of the window server. Requests may come from any thread; none of them
/// reports whether it worked, so callers look afterwards. An absent result means that there was no answer.
class WindowServer {
 public:
  virtual ~WindowServer() = default;

  /// Number of this process's connection; constant.
  virtual std::int32_t mainConnectionID() = 0;
  /// All displays in the window server's order, each with all its spaces in order.
  virtual std::optional<std::vector<ManagedDisplay>> copyManagedDisplaySpaces() = 0;
  /// The space that the display shows now, asked afresh but within a ReadScope; 0 when unknown.
  virtual SpaceID managedDisplayGetCurrentSpace(std::string_view display) = 0;
  /// Makes the display show the space, by the crudest way there is. It does when this returns, or never will by this.
  virtual void managedDisplaySetCurrentSpace(std::string_view display, SpaceID space) = 0;
  /// The windows on one space, front to back; sticky windows are on every space.
  virtual std::optional<std::vector<WindowID>> copyWindowsOnSpace(SpaceID space) = 0;
  /// The spaces that any of the windows is on. `mask` 7 means spaces of every kind.
  virtual std::optional<std::vector<SpaceID>> copySpacesForWindows(int mask, std::span<const WindowID> windows) = 0;

  virtual void moveWindowsToManagedSpace(std::span<const WindowID> windows, SpaceID space) = 0;
  virtual void addWindowsToSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) = 0;
  virtual void removeWindowsFromSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) = 0;
  /// Gives the space a temporary compatibility id (0 takes it away); returns an error code, 0 for none.
  virtual std::int32_t spaceSetCompatID(SpaceID space, std::int32_t compatID) = 0;
  /// Moves the windows to the space that has the compatibility id; returns an error code, 0 for none.
  virtual std::int32_t setWindowListWorkspace(std::span<const WindowID> windows, std::int32_t compatID) = 0;
  /// Hands one operation over. False when this system does not offer it; true says nothing about its end.
  virtual bool performBridged(const BridgedOperation& operation) = 0;

  // Adding and removing desktops. False when this system does not offer it; true says nothing about its end, and the
  // numbers of other spaces may change with it.
  /// One more user desktop after the display's last.
  virtual bool addSpace(std::string_view display) { return static_cast<void>(display), false; }
  /// Its windows go to a neighbouring desktop of the display.
  virtual bool removeSpace(std::string_view display, SpaceID space) {
    return static_cast<void>(display), static_cast<void>(space), false;
  }

  /// Holds one consistent reading together: until the returned object goes, queries of this thread to the
  /// window server, the window list and the screens may be answered from a single batch of requests. Not
  /// to be held across a wait. Scopes nest; the outermost counts.
  [[nodiscard]] virtual std::unique_ptr<ReadScope> beginRead() { return nullptr; }

  /// Whether a window manager that understands desktops is running, its name for messages when it is.
  virtual std::optional<std::string> windowManagerName() = 0;
  /// Whether a window comes along that is held by its title bar while another space is shown. False where it is known
  /// to stay behind: to drag it there would be in vain.
  virtual bool carriesHeldWindows() { return true; }

  /// Tells the system that desktops lie in a grid of this size, filled row by row, so that its own
  /// directions agree with the program's; rows or columns of 0 take that back. Main thread. Optional.
  virtual void setDesktopLayout(int rows, int columns) { static_cast<void>(rows), static_cast<void>(columns); }

  /// Desktops were added, removed or renamed, or a display shows another one. Main thread.
  Signal<> spacesChanged;
  /// The window manager came, went or was replaced. Main thread.
  Signal<> windowManagerChanged;
  /// Windows came, went, or moved to another desktop. Main thread.
  Signal<> windowsChanged;
};

}  // namespace tessaspaces
