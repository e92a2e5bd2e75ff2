#include "contract/SimulatedDriver.h"

#include <algorithm>
#include <map>

#include "platform/simulated/SimulatedPlatform.h"

namespace tessaspaces::contract {

namespace {

using namespace std::chrono_literals;

class SimulatedDriver final : public WorldDriver {
 public:
  explicit SimulatedDriver(const std::vector<Monitor>& monitors) {
    setMonitors(monitors);
    settle();
  }

  Platform& platform() override { return platform_; }

  bool until(const std::function<bool()>& holds) override {
    for (int step = 0; step < 1000 && !holds(); ++step) platform_.time().advance(10ms);
    return holds();
  }
  void settle() override { platform_.time().runUntilIdle(); }

  WindowID open(const ClientWindow& window) override {
    world().addApplication({window.pid, "Sample", "sample"});
    WindowSetup setup;
    setup.title = window.title;
    setup.pid = window.pid;
    setup.space = spaceAt(window.desktop);
    setup.bounds = {double(window.x), double(window.y), double(window.width), double(window.height)};
    return world().addWindow(setup);
  }
  void close(WindowID window) override { world().removeWindow(window); }
  void makeSticky(WindowID window) override {
    world().edit([&](WorldState& state) { state.window(window)->sticky = true; });
  }
  void setFullScreen(WindowID window, bool full) override {
    world().edit([&](WorldState& state) { state.window(window)->reported.fullScreen = full; });
  }
  void draw(WindowID window, const Quarters& colors) override {
    drawn_[window] = colors;
    const auto bounds = world().state()->window(window)->reported.bounds.value();
    auto image = std::make_shared<Image>(Image{int(*bounds.width), int(*bounds.height), {}});
    for (int y = 0; y < image->height; ++y) {
      for (int x = 0; x < image->width; ++x) {
        const auto quarter = (y * 2 / image->height) * 2 + x * 2 / image->width;
        image->pixels.push_back(0xFF000000 | colors.at(static_cast<std::size_t>(quarter)));
      }
    }
    platform_.pictures().draw(window, std::move(image));
  }
  void resize(WindowID window, int width, int height) override {
    world().edit([&](WorldState& state) {
      state.window(window)->reported.bounds->width = width;
      state.window(window)->reported.bounds->height = height;
    });
    draw(window, drawn_[window]);
  }
  void focus(WindowID window) override { world().focusWindow(window); }
  void showDesktop(int desktop) override { world().showSpace(spaceAt(desktop)); }
  void setDesktopCount(int count) override {
    const auto first = world().state()->displays.front().name;
    world().setSpaceCount(first, static_cast<std::size_t>(count));
  }
  void movePointer(int x, int y) override {
    const auto height = world().state()->displays.front().bounds.height;
    world().setPointer({double(x), height - y - 1});
  }
  void pressKey(KeyCombo combo) override { platform_.pressKey(combo); }
  void holdKey(KeyCombo combo) override { platform_.pressKey(combo); }
  void letKeyGo(KeyCombo /*combo*/) override {}
  void takeKey(KeyCombo combo) override { platform_.takeKey(combo); }
  void giveKeyBack(KeyCombo combo) override { platform_.releaseKey(combo); }

  void setMonitors(const std::vector<Monitor>& monitors) override {
    const auto before = world().state();
    for (const auto& display : before->displays) {
      const bool stays = std::any_of(monitors.begin(), monitors.end(),
                                     [&](const auto& monitor) { return monitor.name == display.name; });
      if (!stays) world().removeDisplay(display.name);
    }
    for (const auto& monitor : monitors) {
      const Size size{double(monitor.width), double(monitor.height)};
      const Point topLeft{double(monitor.x), double(monitor.y)};
      if (before->display(monitor.name)) {
        world().resizeDisplay(monitor.name, size);
      } else {
        DisplaySetup setup;
        setup.name = monitor.name;
        setup.size = size;
        setup.topLeft = topLeft;
        setup.spaces.resize(desktopsPerDisplay);
        setup.panelHeight = 24;
        world().addDisplay(setup);
      }
    }
  }
  void setLanguages(const std::vector<std::string>& tags) override { platform_.setPreferredLanguages(tags); }
  void setAnimations(bool wanted) override { platform_.setReduceMotion(!wanted); }
  void stopWindowManager() override { world().setWindowManager(std::nullopt); }

  [[nodiscard]] bool fixedDesktops() const override { return false; }
  [[nodiscard]] bool sharedDesktops() const override { return false; }
  [[nodiscard]] bool tiles() const override { return false; }

 private:
  SimulatedWorld& world() { return platform_.world(); }
  SpaceID spaceAt(int desktop) {
    return world().state()->displays.front().spaces.at(static_cast<std::size_t>(desktop)).id;
  }

  SimulatedPlatform platform_;
  std::map<WindowID, Quarters> drawn_;
};

}  // namespace

Backend simulatedBackend() {
  return {"simulated", [](const auto& monitors) { return std::make_unique<SimulatedDriver>(monitors); }};
}

}  // namespace tessaspaces::contract
