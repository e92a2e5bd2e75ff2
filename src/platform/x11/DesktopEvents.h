#pragma once

#include <optional>
#include <set>

#include "platform/x11/EventPump.h"
#include "platform/x11/FollowedWindow.h"
#include "platform/x11/Reader.h"
#include "platform/x11/ReadingPace.h"
#include "platform/x11/X11WindowServer.h"

namespace tessaspaces {

/// Turns the root's and the windows' property changes into the window server's signals, at most one of
/// each per burst of events. Main thread.
class DesktopEvents : public EventListener {
 public:
  DesktopEvents(Connection& connection, Reader& reader, X11WindowServer& server, EventPump& pump)
      : connection_(connection), reader_(reader), server_(server), pump_(pump), active_(connection) {}

  /// Asks for the events. Main thread.
  void start();
  void handle(const xcb_generic_event_t& event) override;
  void foresee(const xcb_generic_event_t& event) override;
  void eventsDrained() override;

 private:
  void handleProperty(const xcb_property_notify_event_t& event);
  void watchClients();
  /// Reads the active window as soon as the pace allows, if it is not known, so that the next key finds it ready.
  void readActiveAhead();
  bool managerChanged();

  Connection& connection_;
  Reader& reader_;
  X11WindowServer& server_;
  EventPump& pump_;
  FollowedWindow active_;
  ReadingPace activePace_;
  std::optional<TimePoint> readingPlanned_;
  xcb_window_t checkWindow_ = XCB_NONE;
  bool managed_ = false;
  std::set<xcb_window_t> watched_;

  bool spacesDirty_ = false;
  bool clientsDirty_ = false;
  bool windowsDirty_ = false;
  bool managerDirty_ = false;
};

}  // namespace tessaspaces
