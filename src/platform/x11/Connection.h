#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <string>

#include "platform/x11/Atoms.h"
#include "platform/x11/Channel.h"

namespace tessaspaces {

/// The two connections to the X server and what is constant about it. Requests go over `requests` from
/// any thread. `events` belongs to the main thread: it holds the key grabs and selections and brings the
/// events (EventPump); a round trip there may queue events inside xcb, out of sight of poll(2).
class Connection {
 public:
  /// Null with a sentence in `error` when there is no usable server.
  static std::unique_ptr<Connection> open(std::string& error);

  [[nodiscard]] Channel& requests() { return requests_; }
  [[nodiscard]] Channel& events() { return events_; }
  [[nodiscard]] const Atoms& atoms() const { return atoms_; }
  [[nodiscard]] xcb_window_t root() const { return screen_.root; }
  [[nodiscard]] const xcb_screen_t& screen() const { return screen_; }
  [[nodiscard]] const ExtensionCodes& extensions() const { return requests_.extensions(); }
  /// RandR 1.5, which knows monitors.
  [[nodiscard]] bool hasMonitors() const { return hasMonitors_; }
  /// An unmapped window on the event connection that owns selections.
  [[nodiscard]] xcb_window_t ownWindow() const { return ownWindow_; }

  /// Remembers the server time of an event, unless that of a later one is known. Any thread.
  void noteTime(xcb_timestamp_t time);
  /// A server time for requests that want one: that of an event just seen, else asked of the server (one
  /// round trip). Window managers ignore or punish old times. Any thread.
  [[nodiscard]] xcb_timestamp_t timestamp();
  /// The server's time now, by a round trip: for what the window manager compares with the last focus change,
  /// whose event may not have been read yet. Any thread.
  [[nodiscard]] xcb_timestamp_t askTime();

  /// Where messages to the window manager go; it alone may select the first.
  static constexpr std::uint32_t toManager = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  /// Sends a client message of format 32 about `window` to those who selected any of the event mask on the root,
  /// and flushes. Any thread.
  void sendToRoot(xcb_window_t window, xcb_atom_t type, std::initializer_list<std::uint32_t> data,
                  std::uint32_t mask = toManager);
  /// The same for one of several messages that belong together: the next flush sends it. Any thread.
  void queueToRoot(xcb_window_t window, xcb_atom_t type, std::initializer_list<std::uint32_t> data,
                   std::uint32_t mask = toManager);

  /// Takes the errors of requests without reply off the request connection. Any thread.
  void drainRequests();

 private:
  Connection(XcbConnectionRef requests, XcbConnectionRef events, const xcb_screen_t& screen, int screenNumber);

  Channel requests_;
  Channel events_;
  xcb_screen_t screen_;
  Atoms atoms_;
  bool hasMonitors_ = false;
  xcb_window_t ownWindow_ = XCB_NONE;
  xcb_window_t timeWindow_ = XCB_NONE;  // on the request connection, for asking the time

  std::mutex drainMutex_;  // guards that an event taken off the request connection is also looked at
  std::mutex timeMutex_;   // guards the two below
  xcb_timestamp_t lastTime_ = XCB_CURRENT_TIME;
  std::chrono::steady_clock::time_point lastTimeSeen_;
};

}  // namespace tessaspaces
