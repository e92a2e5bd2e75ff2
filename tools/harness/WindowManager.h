#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "harness/Client.h"
#include "harness/Probe.h"
#include "harness/XServer.h"

namespace tessaspaces::harness {

enum class Manager { none, openbox, xfwm4, i3, icewm, metacity };

[[nodiscard]] std::string_view nameOf(Manager manager);
[[nodiscard]] std::optional<Manager> managerNamed(std::string_view name);

/// Whether the window manager gets key bindings of its own: none leaves every key to the program under test,
/// `direct` binds command + 1 ... 4 to desktops 1 ... 4, and the same with shift to taking the focused window there
/// (some window managers then show that desktop too).
enum class OwnBindings { none, direct };

/// Whether the window manager composites: xfwm4 alone can here.
enum class Compositing { off, on };

struct WindowManagerOptions {
  int desktops = 4;
  OwnBindings bindings = OwnBindings::none;
  Compositing compositing = Compositing::off;
  /// i3 only: the monitor that each desktop belongs to, by name, in order; empty: all on the only monitor.
  /// i3 takes left, right, up and down for directions, not for names, and counts the desktops of one monitor after
  /// those of another in an order of its own.
  std::vector<std::string> monitors = {};
};

/// A real window manager with a configuration made for it, running as long as this object.
class WindowManager {
 public:
  /// Starts it and waits until it answers as a window manager and has the wanted number of desktops, the
  /// first of them current. i3 keeps only workspaces with windows: there each desktop gets one.
  WindowManager(const XServer& server, Manager manager, WindowManagerOptions options = {});

  [[nodiscard]] Manager kind() const { return manager_; }
  [[nodiscard]] bool desktopsPerMonitor() const { return manager_ == Manager::i3; }
  /// Whether `_NET_NUMBER_OF_DESKTOPS` is obeyed.
  [[nodiscard]] bool countCanChange() const { return manager_ != Manager::i3; }
  /// Ends the running one and starts another in its place, on the same desktops where the new one allows it.
  void replaceWith(Manager manager);
  void stop();
  [[nodiscard]] std::string output() const { return process_.output(); }

 private:
  void start();
  /// openbox looks like a window manager for some milliseconds before it answers: a window that asks to be mapped
  /// in that time is forgotten. So one asks until it is taken.
  void tryOut();
  void keepDesktopsOpen();

  const XServer* server_;
  Manager manager_;
  WindowManagerOptions options_;
  Probe probe_;
  Client keeper_;
  std::vector<xcb_window_t> kept_;
  Process process_;
};

}  // namespace tessaspaces::harness
