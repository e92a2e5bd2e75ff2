#pragma once

#include <atomic>
#include <functional>

#include "platform/Dispatch.h"
#include "platform/x11/DesktopRemoval.h"
#include "platform/x11/Monitors.h"
#include "platform/x11/Reader.h"

namespace tessaspaces {

/// Adds and removes desktops: by the number of desktops (_NET_NUMBER_OF_DESKTOPS) where the window manager takes
/// it from pagers, with i3 by its workspaces. Any thread, one call at a time. True says nothing about the end; false
/// that nothing was changed.
class DesktopCount {
 public:
  /// `dispatch` is waited through.
  DesktopCount(Connection& connection, Reader& reader, Dispatch& dispatch)
      : connection_(connection), reader_(reader), dispatch_(dispatch) {}

  /// One more, after the last; with i3 after the last of the monitor, and shown: see addI3Workspace.
  bool add(const PixelRect& monitor);
  /// For any but the last one of an EWMH window manager this waits, up to a second, until the number is smaller: a
  /// window manager that ignores it gets the windows back where they were, and is not asked again.
  bool remove(const PixelRect& monitor, SpaceID space);

 private:
  struct Reading;
  Reading read();
  [[nodiscard]] bool ignored(const RootState& root) const;
  bool removeBetween(const Reading& reading, std::uint32_t desktop);
  void removeName(std::uint32_t desktop);
  void send(const PagerMessages& messages);
  /// Asks again and again for a property's number. False when it is not there, and at the end of the patience or
  /// of the program.
  bool waitFor(xcb_window_t window, xcb_atom_t property, Duration patience,
               const std::function<bool(std::uint32_t)>& holds);

  Connection& connection_;
  Reader& reader_;
  Dispatch& dispatch_;
  // The window manager that ignores the number, by its check window.
  std::atomic<xcb_window_t> ignoring_ = XCB_NONE;
};

}  // namespace tessaspaces
