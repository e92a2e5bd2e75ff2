#pragma once

#include "harness/XConnection.h"

namespace tessaspaces::harness {

class XServer;

/// An onlooker that says what the X server holds: the truth that the program's work is checked against. Each
/// question is a round trip; `waitFor` asks again at every change of what was asked about.
class Probe {
 public:
  explicit Probe(const XServer& server);

  [[nodiscard]] std::optional<int> currentDesktop() const;  // from 0, as the window manager counts
  [[nodiscard]] std::optional<int> desktopCount() const;
  [[nodiscard]] std::optional<xcb_window_t> activeWindow() const;
  [[nodiscard]] std::vector<xcb_window_t> clientList() const;
  [[nodiscard]] bool manages(xcb_window_t window) const;
  /// Nothing while the window manager has not said; -1 for a window that is on every desktop.
  [[nodiscard]] std::optional<int> desktopOf(xcb_window_t window) const;
  [[nodiscard]] bool viewable(xcb_window_t window) const;
  /// The running window manager's own name, once it is ready: its check window is alive, and desktop count,
  /// current desktop and client list are set. Nothing otherwise.
  [[nodiscard]] std::optional<std::string> windowManager() const;
  /// The desktops that lie on a monitor whose top left is (x, y), where the window manager says so.
  [[nodiscard]] std::vector<int> desktopsAt(int x, int y) const;
  /// The managed window with this title.
  [[nodiscard]] std::optional<xcb_window_t> findWindow(std::string_view title) const;

  bool waitFor(const std::function<bool()>& holds, Milliseconds timeout = patience) const {
    return x_.waitFor(holds, timeout);
  }
  bool waitForDesktop(int desktop, Milliseconds timeout = patience) const;
  /// What a pager asks of the window manager, without waiting for it to happen.
  void switchTo(int desktop) const;
  void moveTo(xcb_window_t window, int desktop) const;
  void setDesktopCount(int count) const;
  void activate(xcb_window_t window) const;

  [[nodiscard]] const XConnection& connection() const { return x_; }

 private:
  void watch(xcb_window_t window) const;

  XConnection x_;
};

}  // namespace tessaspaces::harness
