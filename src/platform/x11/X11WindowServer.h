#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <mutex>

#include "platform/Dispatch.h"
#include "platform/WindowServer.h"
#include "platform/x11/DesktopCount.h"
#include "platform/x11/DesktopMap.h"
#include "platform/x11/EventPump.h"
#include "platform/x11/PagerLayout.h"
#include "platform/x11/Reader.h"
#include "platform/x11/X11Screens.h"

namespace tessaspaces {

/// Desktops by EWMH; what a space's id is, numberSpaces says. Window managers that share desktops
/// among monitors show the same list on every display; with those that give each monitor its own, each
/// display has its own. Displays come in the order of the screens, without those that mirror another.
class X11WindowServer : public WindowServer {
 public:
  X11WindowServer(Connection& connection, Reader& reader, X11Screens& screens, const EventPump& pump,
                  PagerLayout& pagerLayout, DesktopCount& desktopCount, Dispatch& dispatch)
      : connection_(connection),
        reader_(reader),
        screens_(screens),
        pump_(pump),
        pagerLayout_(pagerLayout),
        desktopCount_(desktopCount),
        dispatch_(dispatch) {}

  std::int32_t mainConnectionID() override;
  std::optional<std::vector<ManagedDisplay>> copyManagedDisplaySpaces() override;
  SpaceID managedDisplayGetCurrentSpace(std::string_view display) override;
  /// Waits up to 0.1 s for the window manager to obey.
  void managedDisplaySetCurrentSpace(std::string_view display, SpaceID space) override;
  std::optional<std::vector<WindowID>> copyWindowsOnSpace(SpaceID space) override;
  std::optional<std::vector<SpaceID>> copySpacesForWindows(int mask, std::span<const WindowID> windows) override;
  void moveWindowsToManagedSpace(std::span<const WindowID> windows, SpaceID space) override;
  /// An X11 window is on one desktop or on all: it moves to the last of the spaces.
  void addWindowsToSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) override;
  /// Does something only for a window on all desktops of which one remains: it moves there.
  void removeWindowsFromSpaces(std::span<const WindowID> windows, std::span<const SpaceID> spaces) override;
  std::int32_t spaceSetCompatID(SpaceID space, std::int32_t compatID) override;
  std::int32_t setWindowListWorkspace(std::span<const WindowID> windows, std::int32_t compatID) override;
  /// One message switches: ShowSpaces and HideSpaces have nothing left to do. A space to hide may be gone by
  /// then, since i3 drops an empty one as soon as it is left.
  bool performBridged(const BridgedOperation& operation) override;
  /// Where monitors share their desktops, all of them get one more and lose one. See DesktopCount.
  bool addSpace(std::string_view display) override;
  bool removeSpace(std::string_view display, SpaceID space) override;
  [[nodiscard]] std::unique_ptr<ReadScope> beginRead() override { return reader_.beginRead(); }
  std::optional<std::string> windowManagerName() override;
  bool carriesHeldWindows() override;
  void setDesktopLayout(int rows, int columns) override { pagerLayout_.advertise(rows, columns); }

  /// Looks which desktop the focused monitor shows, while it still does: see VisibleDesktops. Any thread.
  void noteVisibleDesktops();
  /// `seen` is told what each look at a display's current space finds, on the thread that looks; set before there are
  /// other threads. Other looks and changes may have overtaken it.
  void onLook(std::function<void(std::string_view display, SpaceID shown)> seen) { seen_ = std::move(seen); }
  /// Tells which windows are on a desktop that is shown, as of one moment.
  class Sight {
   public:
    [[nodiscard]] bool isVisible(const WindowRecord& window) const;

   private:
    friend class X11WindowServer;
    bool managed_ = false;
    bool perMonitor_ = false;
    std::optional<std::uint32_t> current_;
  };
  [[nodiscard]] Sight sight();

 private:
  struct View;
  View view();
  std::optional<std::uint32_t> current(const View& view, std::size_t monitor);
  /// The desktops as they are numbered now.
  Reader::Root numbering();
  bool areKnown(std::span<const SpaceID> spaces);
  std::optional<PixelRect> countableArea(std::string_view display);
  bool switchTo(std::string_view display, SpaceID space);
  bool move(std::span<const WindowID> windows, SpaceID space);
  bool isKnownNotSticky(xcb_window_t window);

  Connection& connection_;
  Reader& reader_;
  X11Screens& screens_;
  const EventPump& pump_;
  PagerLayout& pagerLayout_;
  DesktopCount& desktopCount_;
  Dispatch& dispatch_;
  VisibleDesktops visible_;
  std::function<void(std::string_view, SpaceID)> seen_;

  std::mutex compatMutex_;  // guards compatIDs_
  std::map<std::int32_t, SpaceID> compatIDs_;
};

}  // namespace tessaspaces
