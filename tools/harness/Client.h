#pragma once

#include <sys/types.h>

#include <array>

#include "harness/XConnection.h"

namespace tessaspaces::harness {

class XServer;

struct WindowSpec {
  std::string title = "window";
  std::string instance = "sample";   // WM_CLASS's first part
  std::string className = "Sample";  // and its second
  Rectangle frame{100, 100, 480, 320};
  std::uint32_t colour = 0x4477AA;  // 0xRRGGBB
  std::string type = "_NET_WM_WINDOW_TYPE_NORMAL";
  std::optional<pid_t> pid = {};  // _NET_WM_PID; nothing leaves it away
  /// From 0; nothing lets the window manager decide. i3 makes the workspace when the harness started it.
  std::optional<int> desktop = {};
};

/// An application with windows, on a connection of its own: they all go when it goes. Its windows know of close
/// buttons.
class Client {
 public:
  explicit Client(const XServer& server);

  /// Makes a window, maps it and waits until the window manager has it in its client list, on the desktop that
  /// was asked for; throws when that does not come about.
  xcb_window_t open(const WindowSpec& spec = {});
  /// The same without waiting: for storms, and where no window manager runs.
  xcb_window_t openUnmanaged(const WindowSpec& spec = {});
  void close(xcb_window_t window);
  /// Closes the windows whose close button was pressed since the last call, as programs do by themselves.
  void answerCloseRequests();
  void setTitle(xcb_window_t window, std::string_view title);
  /// Makes the window look like this wherever it is laid open from now on: colours (0xRRGGBB) of its quarters, top
  /// left, top right, bottom left, bottom right.
  void draw(xcb_window_t window, const std::array<std::uint32_t, 4>& quarters);
  /// Returns when the window has that size; throws when the window manager does not grant it.
  void resize(xcb_window_t window, int width, int height);

  [[nodiscard]] const XConnection& connection() const { return x_; }

 private:
  bool waitFor(const std::function<bool()>& holds);
  void take(const xcb_generic_event_t& event);

  XConnection x_;
};

}  // namespace tessaspaces::harness
