#pragma once

#include <gmock/gmock.h>

#include <QImage>
#include <memory>
#include <string>
#include <vector>

#include "harness/Client.h"
#include "harness/Input.h"
#include "harness/XServer.h"
#include "ui/PanelWindow.h"
#include "ui/x11/X11PanelSystem.h"

class QWidget;

namespace tessaspaces {

inline constexpr auto twoMonitors = "*left 640x800+0+0 | right 640x800+640+0";

/// Writes down what a panel is told, a line each: "press left 10,20", "key enter", "typed x".
class RecordingInput final : public GridPanelInput {
 public:
  void pointerMoved(Point at) override { last = at; }
  void pointerLeft() override {}
  void pressed(GridButton button, Point at) override { note("press", button, at); }
  void released(GridButton button, Point at) override { note("release", button, at); }
  void key(GridKey key) override { heard.push_back("key " + std::to_string(static_cast<int>(key))); }
  void typed(const std::string& text) override { heard.push_back("typed " + text); }
  bool hotKey(KeyCombo combo, bool repeated) override;
  void covered() override { heard.emplace_back("covered"); }

  /// All lines since the last call.
  std::vector<std::string> take() { return std::exchange(heard, {}); }

  std::vector<std::string> heard;
  Point last;
  KeyCombo known;  // the one that is a hot key

 private:
  void note(const char* what, GridButton button, Point at);
};

/// Two panels, one on each monitor, over an application's window that has the input focus and should hear of nothing.
class PanelTest : public testing::Test {
 public:
  static const harness::XServer* server;

 protected:
  PanelTest();
  ~PanelTest() override;

  /// A scene with four tiles, each with a window, that looks different on each monitor.
  [[nodiscard]] static GridScene scene(int monitor);
  [[nodiscard]] static ScreenRef screen(int monitor);
  void open(int monitor, const std::optional<GridPanelView::Zoom>& zoom = {}, std::function<void()> finished = {}) {
    panels[static_cast<std::size_t>(monitor)]->open(screen(monitor), scene(monitor), zoom, std::move(finished));
  }
  /// Opens both and gives the keyboard to the left one.
  void openBoth();
  [[nodiscard]] PanelWindow& left() { return *panels[0]; }
  [[nodiscard]] PanelWindow& right() { return *panels[1]; }
  /// The window of the panel on that monitor.
  [[nodiscard]] static QWidget* widget(int monitor);

  /// The server has done all that this process has asked of it.
  static void settle();
  /// Turns Qt's loop until it holds; false when it never does.
  static bool eventually(const std::function<bool()>& holds);
  /// Waits until the input has been told that many things, and takes them.
  std::vector<std::string> hears(RecordingInput& input, std::size_t count);
  /// The presses of keys and buttons that reached the application since the last call.
  std::size_t leaked();
  /// What is on the screen, as the server says.
  [[nodiscard]] static QImage screenContent(const harness::XConnection& connection);

  harness::Client application{*server};
  harness::Keyboard keyboard{*server};
  harness::Pointer pointer{*server};
  xcb_window_t below = XCB_NONE;
  RecordingInput inputs[2];
  std::unique_ptr<X11PanelSystem> system;
  std::unique_ptr<PanelWindow> panels[2];
};

}  // namespace tessaspaces
