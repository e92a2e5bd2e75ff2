#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "grid/GridCoordinator.h"
#include "support/CoreTest.h"

namespace tessaspaces {

/// A panel's window that nobody sees: keeps what it was told, and leaves to the test when a zoom ends and what the user
/// does.
class FakePanelView final : public GridPanelView {
 public:
  FakePanelView(GridPanelInput& panelInput, std::vector<FakePanelView*>& views) : input(panelInput), views_(views) {
    views_.push_back(this);
  }
  ~FakePanelView() override { std::erase(views_, this); }

  void open(const ScreenRef& screen, const GridScene& shown, const std::optional<Zoom>& how,
            std::function<void()> done) override {
    isUp = true;
    ++openings;
    on = screen;
    scene = shown;
    zoom = how;
    finished_ = std::move(done);
    if (!how && finished_) std::exchange(finished_, {})();
  }
  void close() override {
    isUp = keyboard = false;
    zoom.reset();
    finished_ = {};
    if (nameDone) std::exchange(nameDone, {})(std::nullopt);
  }
  [[nodiscard]] bool isOpen() const override { return isUp; }
  bool takeKeyboard() override {
    ++keyboardWishes;
    return keyboard = !keyboardIsElsewhere;
  }
  void giveKeyboardBack() override { keyboard = false; }
  void show(const GridScene& shown) override {
    scene = shown;
    ++drawn;
  }
  void animate(const Zoom& how, std::function<void()> done) override {
    zoom = how;
    finished_ = std::move(done);
  }
  void flyBack(const GridScene::Window& window, const Rect& from, const Rect& to) override {
    flights.push_back({window.id, from, to});
  }
  void editName(const Rect&, const std::string& name, std::function<void(std::optional<std::string>)> done) override {
    editedName = name;
    nameDone = std::move(done);
  }
  void openMenu(Point, std::vector<GridMenuItem> items) override { menu = std::move(items); }
  void alert(const std::string& title, const std::string& text) override { alerts.push_back(title + " | " + text); }
  [[nodiscard]] double scale() const override { return 1; }

  /// The zoom has come to its end.
  void finishZoom() {
    ASSERT_TRUE(zoom);
    zoom.reset();
    if (finished_) std::exchange(finished_, {})();
  }
  [[nodiscard]] const GridScene::Tile& tile(const std::string& label) const {
    const auto found =
        std::find_if(scene.tiles.begin(), scene.tiles.end(), [&](const auto& each) { return each.label == label; });
    if (found == scene.tiles.end()) ADD_FAILURE() << "no tile " << label;
    static const GridScene::Tile none;
    return found == scene.tiles.end() ? none : *found;
  }
  /// All-zero when it is not on that tile.
  [[nodiscard]] GridScene::Window window(const std::string& label, WindowID id) const {
    for (const auto& each : tile(label).windows) {
      if (each.id == id) return each;
    }
    return {};
  }
  [[nodiscard]] std::vector<WindowID> windows(const std::string& label) const {
    std::vector<WindowID> ids;
    for (const auto& each : tile(label).windows) ids.push_back(each.id);
    return ids;
  }
  void click(Point at, GridButton button = GridButton::left) {
    input.pointerMoved(at);
    input.pressed(button, at);
    input.released(button, at);
  }
  /// A place on the tile where no window is.
  [[nodiscard]] Point freePlace(const std::string& label) const {
    const auto& content = tile(label).content;
    return {content.maxX() - 2, content.maxY() - 2};
  }
  void clickTile(const std::string& label) { click(freePlace(label)); }
  void drag(Point from, Point to) {
    input.pointerMoved(from);
    input.pressed(GridButton::left, from);
    input.pointerMoved({from.x + 10, from.y + 10});
    input.pointerMoved(to);
    input.released(GridButton::left, to);
  }

  struct Flight {
    WindowID window = 0;
    Rect from;
    Rect to;
  };
  GridPanelInput& input;
  bool isUp = false;
  bool keyboard = false;
  bool keyboardIsElsewhere = false;
  int openings = 0;
  int drawn = 0;
  int keyboardWishes = 0;
  ScreenRef on;
  GridScene scene;
  std::optional<Zoom> zoom;
  std::vector<Flight> flights;
  std::vector<std::string> alerts;
  std::vector<GridMenuItem> menu;
  std::string editedName;
  std::function<void(std::optional<std::string>)> nameDone;

 private:
  std::vector<FakePanelView*>& views_;
  std::function<void()> finished_;
};

class FakeBackgrounds final : public TileBackgrounds {
 public:
  TileBackground background(const std::string&, SpaceID space, ImageSize pixels) override {
    asked[space] = pixels;
    return {nullptr, color + static_cast<std::uint32_t>(space)};
  }
  void refresh() override { ++refreshed; }
  void learn(const std::string&, SpaceID) override {}

  std::uint32_t color = 0xFF000000;
  std::map<SpaceID, ImageSize> asked;
  int refreshed = 0;
};

/// A coordinator whose panels have fake windows. Desktops have the numbers of the world's text, from 1.
class PanelTest : public CoreTest {
 protected:
  ~PanelTest() override { grid.reset(); }

  static constexpr auto two = "left 960x1080 | A* [Mail Editor] B [Web] C ; right 960x1080 | X* [Chat] Y";

  void startGrid(std::string_view worldText, OperatingSystemVersion version = {27, 0}) {
    grid.reset();
    start(worldText, version);
    grid = std::make_unique<GridCoordinator>(
        [this](GridPanelInput& input) { return std::make_unique<FakePanelView>(input, views); }, backgrounds);
  }
  /// Opens it and lets the zooms and what follows come to their ends.
  void open(const std::string& focusedOn = "") {
    grid->show(screen(focusedOn));
    for (auto* view : views) {
      if (view->zoom) view->finishZoom();
    }
    advance(std::chrono::milliseconds(10));
    (void)takeLog();
  }
  ScreenRef screen(const std::string& name) {
    for (const auto& each : sim->screens().screens()) {
      if (each->uuid == name) return each;
    }
    return nullptr;
  }
  /// The window over that display.
  FakePanelView& view(const std::string& display) {
    for (auto* each : views) {
      if (each->on && each->on->uuid == display) return *each;
    }
    ADD_FAILURE() << "no panel on " << display;
    return *views.front();
  }
  void advance(Duration time) { sim->time().advance(time); }
  void fault(const std::function<void(SimulatedFaults&)>& change) { world().editFaults(change); }
  /// The number of the window with that title.
  [[nodiscard]] WindowID id(const std::string& title) {
    for (const auto& window : world().state()->windows) {
      if (window.reported.name == title) return window.id;
    }
    ADD_FAILURE() << "no window " << title;
    return 0;
  }
  [[nodiscard]] Rect frameOf(WindowID window) {
    const auto bounds = *world().state()->window(window)->reported.bounds;
    return {*bounds.x, *bounds.y, *bounds.width, *bounds.height};
  }

  std::vector<FakePanelView*> views;
  FakeBackgrounds backgrounds;
  std::unique_ptr<GridCoordinator> grid;
};

}  // namespace tessaspaces
