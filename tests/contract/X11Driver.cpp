#include "contract/X11Driver.h"

#include <algorithm>
#include <cstdlib>
#include <map>

#include "harness/Client.h"
#include "harness/Input.h"
#include "harness/Probe.h"
#include "harness/WindowManager.h"
#include "harness/XServer.h"
#include "platform/loop/RunLoop.h"
#include "platform/x11/X11Platform.h"

namespace tessaspaces::contract {

namespace {

using harness::Failure;

/// As the harness reads monitors: "*left 960x1080+0+0 | right 960x1080+960+0".
std::string layoutOf(const std::vector<Monitor>& monitors) {
  std::string text;
  for (const auto& monitor : monitors) {
    text += text.empty() ? "*" : " | ";
    text += monitor.name + " " + std::to_string(monitor.width) + "x" + std::to_string(monitor.height) + "+" +
            std::to_string(monitor.x) + "+" + std::to_string(monitor.y);
  }
  return text;
}

/// What the X11 worlds differ in.
struct Setting {
  std::string name;
  harness::Manager manager = harness::Manager::openbox;
  harness::Compositing compositing = harness::Compositing::off;
  harness::SharedMemory sharedMemory = harness::SharedMemory::on;
};

harness::XServerOptions serverOptions(const Setting& setting, const std::vector<Monitor>& monitors) {
  harness::XServerOptions options;
  options.monitors = layoutOf(monitors);
  options.sharedMemory = setting.sharedMemory;
  return options;
}

/// Desktops of their own for each monitor, where the window manager has such.
harness::WindowManagerOptions managerOptions(const Setting& setting, const std::vector<Monitor>& monitors) {
  harness::WindowManagerOptions options;
  options.compositing = setting.compositing;
  if (setting.manager == harness::Manager::i3) {
    options.desktops = desktopsPerDisplay * static_cast<int>(monitors.size());
    for (const auto& monitor : monitors)
      options.monitors.insert(options.monitors.end(), desktopsPerDisplay, monitor.name);
  }
  return options;
}

/// Changes this process's environment for as long as it lives.
class EnvironmentChange {
 public:
  EnvironmentChange() = default;
  EnvironmentChange(const EnvironmentChange&) = delete;
  EnvironmentChange& operator=(const EnvironmentChange&) = delete;
  ~EnvironmentChange() {
    for (const auto& [name, value] : before_) put(name, value);
  }

  void set(const std::string& name, const std::optional<std::string>& value) {
    const char* old = std::getenv(name.c_str());
    before_.emplace(name, old ? std::optional<std::string>(old) : std::nullopt);
    put(name, value);
  }

 private:
  static void put(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
  }

  std::map<std::string, std::optional<std::string>> before_;
};

/// A settings program that knows one number.
class SettingsProgram {
 public:
  explicit SettingsProgram(const harness::XServer& server) : x_(server.display()) {}

  void set(const std::string& name, std::uint32_t value) {
    if (window_ == XCB_NONE) {
      window_ = xcb_generate_id(x_.get());
      xcb_create_window(x_.get(), 0, window_, x_.root(), -5, -5, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
      xcb_set_selection_owner(x_.get(), window_, x_.atom("_XSETTINGS_S0"), XCB_CURRENT_TIME);
    }
    const auto four = [](std::uint32_t number) {
      std::string bytes;
      for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift);
      return bytes;
    };
    const auto size = static_cast<std::uint32_t>(name.size());
    constexpr std::uint32_t mostSignificantFirst = 1U << 24U;
    ++serial_;
    x_.setText(window_, "_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS",
               four(mostSignificantFirst) + four(serial_) + four(1) + four(size) + name +
                   std::string((4 - size % 4) % 4, '\0') + four(serial_) + four(value));
    x_.roundTrip();
  }

 private:
  harness::XConnection x_;
  xcb_window_t window_ = XCB_NONE;
  std::uint32_t serial_ = 0;
};

class X11Driver final : public WorldDriver {
 public:
  X11Driver(const Setting& setting, const std::vector<Monitor>& monitors)
      : server_(serverOptions(setting, monitors)),
        manager_(server_, setting.manager, managerOptions(setting, monitors)),
        clients_(server_),
        probe_(server_),
        keyboard_(server_),
        pointer_(server_),
        holder_(server_),
        settings_(server_) {
    // What this process is told of the server is what any program started there is told.
    for (const auto& [name, value] : server_.environment()) environment_.set(name, value);
    for (const auto* name : {"WAYLAND_DISPLAY", "XDG_CONFIG_HOME"}) environment_.set(name, std::nullopt);
    auto loop = std::make_unique<RunLoop>();
    loop_ = loop.get();
    std::string error;
    platform_ = X11Platform::open(std::move(loop), &error);
    if (!platform_) throw Failure("the platform does not open: " + error);
  }

  Platform& platform() override { return *platform_; }

  bool until(const std::function<bool()>& holds) override {
    const auto look = [&] {
      clients_.answerCloseRequests();
      return holds();
    };
    return loop_->runUntil(look, loop_->now() + harness::patience);
  }

  void settle() override {
    // The window manager takes messages in their order: when it has managed a window that was opened after
    // them it has dealt with all before, and when the platform has seen that window, with their events.
    platform_->windowServer().managedDisplayGetCurrentSpace("");
    const auto sentinel = clients_.open({.title = "sentinel", .frame = {0, 0, 10, 10}});
    if (!until([&] { return isListed(sentinel); })) throw Failure("the platform does not see a new window");
    clients_.close(sentinel);
    if (!until([&] { return !isListed(sentinel) && !probe_.manages(sentinel); })) {
      throw Failure("the platform does not see a window go");
    }
  }

  WindowID open(const ClientWindow& window) override {
    harness::WindowSpec spec;
    spec.title = window.title;
    spec.frame = {window.x, window.y, window.width, window.height};
    if (window.pid != 0) spec.pid = window.pid;
    spec.desktop = window.desktop;  // the first display's desktops come first everywhere
    return clients_.open(spec);
  }
  void close(WindowID window) override {
    clients_.close(window);
    require(probe_.waitFor([&] { return !probe_.manages(window); }), "a window does not go");
  }
  void makeSticky(WindowID window) override {
    probe_.moveTo(window, -1);
    require(probe_.waitFor([&] { return probe_.desktopOf(window) == -1; }), "a window does not become sticky");
  }
  void setFullScreen(WindowID window, bool full) override {
    const auto& x = probe_.connection();
    const auto state = x.atom("_NET_WM_STATE_FULLSCREEN");
    x.sendToRoot(window, "_NET_WM_STATE", {full ? 1U : 0U, state, 0, 2});
    static_cast<void>(probe_.viewable(window));  // from now on the probe hears of its changes
    const auto took = probe_.waitFor([&] {
      const auto states = x.numbers(window, "_NET_WM_STATE");
      return (std::find(states.begin(), states.end(), state) != states.end()) == full;
    });
    require(took, "a window does not become full-screen, or stays so");
  }
  void draw(WindowID window, const Quarters& colors) override {
    drawn_[window] = colors;
    clients_.draw(window, colors);
  }
  void resize(WindowID window, int width, int height) override {
    clients_.resize(window, width, height);
    clients_.draw(window, drawn_[window]);
  }
  void focus(WindowID window) override {
    probe_.activate(window);
    require(probe_.waitFor([&] { return probe_.activeWindow() == window; }), "a window does not get the focus");
  }
  void showDesktop(int desktop) override {
    probe_.switchTo(desktop);
    require(probe_.waitForDesktop(desktop), "the desktop is not shown");
  }
  void setDesktopCount(int count) override {
    probe_.setDesktopCount(count);
    if (!fixedDesktops()) require(probe_.waitFor([&] { return probe_.desktopCount() == count; }), "no such count");
  }
  void movePointer(int x, int y) override { pointer_.moveTo(x, y); }
  void pressKey(KeyCombo combo) override { keyboard_.press(combo); }
  void holdKey(KeyCombo combo) override { keyboard_.keyDown(combo); }
  void letKeyGo(KeyCombo combo) override { keyboard_.keyUp(combo); }
  void takeKey(KeyCombo combo) override { require(holder_.hold(combo), "somebody else has the key"); }
  void giveKeyBack(KeyCombo combo) override { holder_.letGo(combo); }
  void setMonitors(const std::vector<Monitor>& monitors) override { server_.setMonitors(layoutOf(monitors)); }
  void setLanguages(const std::vector<std::string>& tags) override {
    std::string list;
    for (auto tag : tags) {
      std::replace(tag.begin(), tag.end(), '-', '_');
      list += (list.empty() ? "" : ":") + tag;
    }
    environment_.set("LANGUAGE", list);
    environment_.set("LC_ALL", list.substr(0, list.find(':')) + ".UTF-8");
  }
  void setAnimations(bool wanted) override { settings_.set("Gtk/EnableAnimations", wanted); }
  void stopWindowManager() override { manager_.stop(); }

  [[nodiscard]] bool fixedDesktops() const override { return !manager_.countCanChange(); }
  [[nodiscard]] bool sharedDesktops() const override { return !manager_.desktopsPerMonitor(); }
  [[nodiscard]] bool tiles() const override { return manager_.kind() == harness::Manager::i3; }

 private:
  static void require(bool holds, const char* complaint) {
    if (!holds) throw Failure(complaint);
  }

  bool isListed(WindowID window) {
    const auto list = platform_->windowList().copyWindowInfo(WindowListOption::all);
    return list && std::any_of(list->begin(), list->end(), [&](const auto& each) { return each.number == window; });
  }

  EnvironmentChange environment_;
  harness::XServer server_;
  harness::WindowManager manager_;
  harness::Client clients_;
  harness::Probe probe_;
  harness::Keyboard keyboard_;
  harness::Pointer pointer_;
  harness::KeyHolder holder_;
  SettingsProgram settings_;
  std::map<WindowID, Quarters> drawn_;
  RunLoop* loop_ = nullptr;
  std::unique_ptr<X11Platform> platform_;
};

Backend backend(Setting setting) {
  const auto name = setting.name;
  return {name, [setting = std::move(setting)](const std::vector<Monitor>& monitors) {
            return std::make_unique<X11Driver>(setting, monitors);
          }};
}

}  // namespace

std::vector<Backend> x11Backends() {
  return {backend({"openbox", harness::Manager::openbox}), backend({"xfwm4", harness::Manager::xfwm4}),
          backend({"i3", harness::Manager::i3})};
}

std::vector<Backend> x11CaptureBackends() {
  auto backends = x11Backends();
  backends.push_back(backend({"xfwm4_compositing", harness::Manager::xfwm4, harness::Compositing::on}));
  backends.push_back(backend({.name = "openbox_far_away", .sharedMemory = harness::SharedMemory::off}));
  return backends;
}

}  // namespace tessaspaces::contract
