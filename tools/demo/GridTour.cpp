#include "demo/GridTour.h"

#include <fmt/format.h>
#include <unistd.h>

#include "demo/Samples.h"
#include "demo/Scene.h"
#include "harness/Overview.h"

namespace tessaspaces::demo {
namespace {

using namespace harness;

constexpr Milliseconds patient{5'000};

class Tour {
 public:
  Tour(Session& session, Witness& witness, Overview overview, int count)
      : session_(session), witness_(witness), overview_(std::move(overview)), count_(count) {}

  void open() {
    session_.keyboard.press(Overview::key);
    const bool opened = overview_.waitUntilOpen(patient);
    const auto monitors = overview_.monitors().size();
    witness_.verdict(fmt::format("pressed {}", Overview::key.display()),
                     fmt::format("{} panel{} on screen", monitors, monitors == 1 ? "" : "s"),
                     fmt::format("{}", overview_.panels().size()), opened);
    const bool taken =
        session_.probe.waitFor([&] { return overview_.keyboardIsTaken() || overview_.panels().empty(); }, patient);
    if (!taken) throw Failure("the overview does not take the keyboard");
    settle();
  }

  void expectClosed(std::string_view what) {
    const bool closed = overview_.waitUntilClosed(patient);
    witness_.verdict(what, "no panel on screen", fmt::format("{}", overview_.panels().size()), closed);
  }

  void expectDesktop(std::string_view what, int desktop) {
    const bool right = session_.probe.waitForDesktop(desktop, patient);
    const auto found = session_.probe.currentDesktop();
    witness_.verdict(what, fmt::format("desktop {}", desktop + 1), fmt::format("desktop {}", found.value_or(-1) + 1),
                     right);
  }

  void clickTile(int index, std::size_t monitor = 0) {
    const auto [x, y] = overview_.middle(index, count_, monitor);
    session_.pointer.glideTo(x, y);
    session_.pointer.click();
  }

  /// Takes a window's preview from one tile to another, with a picture on the way.
  void drag(xcb_window_t window, int from, int to, std::string_view picture, std::size_t fromMonitor = 0,
            std::size_t toMonitor = 0) {
    const auto [x, y] = previewOf(window, from, fromMonitor);
    const auto [toX, toY] = overview_.middle(to, count_, toMonitor);
    session_.pointer.moveTo(x, y);
    session_.pointer.press();
    session_.pointer.glideTo(toX, toY, 30);
    settle();
    witness_.picture(picture);
    session_.pointer.release();
  }

  void expectWindowOn(std::string_view what, xcb_window_t window, int desktop) {
    const bool right = session_.probe.waitFor([&] { return session_.probe.desktopOf(window) == desktop; }, patient);
    const auto found = session_.probe.desktopOf(window);
    witness_.verdict(what, fmt::format("the window on desktop {}", desktop + 1),
                     fmt::format("desktop {}", found.value_or(-1) + 1), right);
  }

  /// Longer than any zoom takes: for pictures of what is there in the end.
  void settle() {
    session_.probe.waitFor([] { return false; }, Milliseconds(700));
  }

  Overview& overview() { return overview_; }

 private:
  [[nodiscard]] std::pair<int, int> previewOf(xcb_window_t window, int index, std::size_t monitor) {
    const XConnection& x = session_.probe.connection();
    const auto size = x.reply(xcb_get_geometry_reply, xcb_get_geometry(x.get(), window));
    const auto at =
        x.reply(xcb_translate_coordinates_reply, xcb_translate_coordinates(x.get(), window, x.root(), 0, 0));
    if (!size || !at) throw Failure("the window to drag is gone");
    return overview_.pointInTile(index, count_, at->dst_x + size->width / 2, at->dst_y + size->height / 2, monitor);
  }

  Session& session_;
  Witness& witness_;
  Overview overview_;
  int count_;
};

/// What was never on screen since the program began has no picture: shows every desktop for a moment, the first one
/// last.
void lookAround(Session& session, int count) {
  session.probe.waitFor([] { return false; }, Milliseconds(600));
  for (int i = 1; i <= count; ++i) {
    session.probe.switchTo(i % count);
    if (!session.probe.waitForDesktop(i % count)) throw Failure("the window manager does not switch");
    session.probe.waitFor([] { return false; }, Milliseconds(150));
  }
}

xcb_window_t openSampleWindow(Session& session, const std::string& title, Rectangle frame) {
  const xcb_window_t window = session.client.open(
      {.title = title, .instance = "writer", .className = "Writer", .frame = frame, .pid = getpid(), .desktop = 0});
  sample(2, frame.width, frame.height).picture.putInto(session.client.connection(), window);
  session.probe.activate(window);
  const bool shown = session.probe.waitFor(
      [&] { return session.probe.activeWindow() == window && session.probe.viewable(window); }, patient);
  if (!shown) throw Failure("the window manager does not show a new window");
  return window;
}

void byMouse(Session& session, Witness& witness, Tour& tour, xcb_window_t window) {
  witness.heading("The overview, by mouse");
  tour.open();
  witness.picture("overview");
  tour.clickTile(6);
  tour.expectDesktop("clicked the tile of desktop 7", 6);
  tour.expectClosed("and the overview");
  session.keyboard.press(directKey(1));
  session.probe.waitForDesktop(0);
  tour.open();
  tour.drag(window, 0, 5, "drag");
  tour.expectWindowOn("dragged the preview of a window from tile 1 to tile 6", window, 5);
  session.keyboard.press(Overview::viewKey);
  tour.settle();
  witness.picture("exploded");
  session.keyboard.press(Overview::viewKey);
  session.keyboard.press(Overview::key);
  tour.expectClosed(fmt::format("pressed {} again", Overview::key.display()));
}

void byKeyboard(Session& session, Witness& witness, Tour& tour, xcb_window_t window) {
  witness.heading("The overview, by keyboard");
  tour.open();
  session.keyboard.strike(keys::right);
  session.keyboard.strike(keys::down);
  session.keyboard.strike(keys::enter);
  tour.expectDesktop("right, down, Enter on desktop 1", 5);
  tour.expectClosed("and the overview");

  tour.open();
  session.keyboard.strike(keys::f2);
  session.keyboard.type("Letters");
  tour.settle();
  witness.picture("rename");
  session.keyboard.strike(keys::enter);
  const bool stored = waitForText(session.program.settingsFile(), "\"Letters\"", 0, patient);
  witness.verdict("F2, a name and Enter", "the name among the settings", stored ? "it is there" : "it is not", stored,
                  "the settings file");
  session.keyboard.strike(keys::escape);
  tour.expectClosed("pressed Escape");

  session.keyboard.press(directKey(1));
  session.probe.waitForDesktop(0);
  tour.open();
  session.keyboard.type("companion");
  tour.settle();
  witness.picture("filter");
  session.keyboard.strike(keys::enter);
  tour.expectDesktop("typed a part of a window's title and Enter", 5);
  const bool active = session.probe.waitFor([&] { return session.probe.activeWindow() == window; }, patient);
  witness.verdict("and there", "the window active", active ? "it is" : "another one is", active);
  tour.expectClosed("and the overview");
  session.keyboard.press(directKey(1));
  session.probe.waitForDesktop(0);
}

void onTwoDisplays(Session& session, Witness& witness) {
  witness.heading("On two displays");
  const auto& screen = session.probe.connection().screen();
  const int half = screen.width_in_pixels / 2;
  const int height = screen.height_in_pixels;
  session.server.setMonitors(
      fmt::format("*west {}x{}+0+0 | east {}x{}+{}+0", half, height, screen.width_in_pixels - half, height, half));
  if (!session.program.waitForLog("GRID: displays changed (2 connected)")) {
    throw Failure("the program does not notice the displays");
  }
  Overview overview(session, 3, columns, {{0, 0, half, height}, {half, 0, screen.width_in_pixels - half, height}});
  Tour tour(session, witness, std::move(overview), desktops);
  const xcb_window_t window = openSampleWindow(session, "From west to east", {140, 260, 560, 420});
  tour.open();
  witness.picture("two-displays");
  tour.drag(window, 0, 0, "drag-across", 0, 1);
  const bool across = session.probe.waitFor(
      [&] {
        const XConnection& x = session.probe.connection();
        const auto at =
            x.reply(xcb_translate_coordinates_reply, xcb_translate_coordinates(x.get(), window, x.root(), 0, 0));
        return at && at->dst_x >= half;
      },
      patient);
  witness.verdict("dragged a preview to the other display", "the window there", across ? "it is there" : "it is not",
                  across);
  session.keyboard.press(Overview::key);
  tour.expectClosed(fmt::format("pressed {}", Overview::key.display()));
  session.server.setMonitors({});
  session.client.close(window);
}

}  // namespace

void tourOfTheGrid(Session& session, Witness& witness) {
  Tour tour(session, witness, Overview(session, 3, columns), desktops);
  lookAround(session, desktops);
  const xcb_window_t window = openSampleWindow(session, "Travelling companion", {1180, 560, 560, 400});
  byMouse(session, witness, tour, window);
  byKeyboard(session, witness, tour, window);
  // i3's workspaces belong to one monitor each, and all are on the first.
  if (!session.windowManager.desktopsPerMonitor()) onTwoDisplays(session, witness);
}

void tourOfManyWindows(Manager manager, Witness& witness) {
  constexpr int many = 16;
  constexpr int windows = 100;
  witness.heading("Sixteen desktops, a hundred windows");
  Session session({.manager = manager, .desktops = {.desktops = many}, .screen = {.width = 1920, .height = 1080}});
  crowd(session, many, windows);
  session.program.start({{"tessaspaces.grid.rows", "4"}, {"tessaspaces.grid.columns", "4"}});
  lookAround(session, many);
  witness.turnTo(session);
  Tour tour(session, witness, Overview(session, 4, 4), many);
  tour.open();
  witness.picture("many-windows");
  session.keyboard.press(Overview::viewKey);
  tour.settle();
  witness.picture("many-windows-exploded");
  tour.clickTile(10);
  tour.expectDesktop("clicked the tile of desktop 11", 10);
  tour.expectClosed("and the overview");
  const auto status = session.program.stop();
  witness.verdict("sent SIGTERM", "a clean end with exit status 0",
                  status ? fmt::format("exit status {}", *status) : "it did not end", status == 0, "the system");
}

}  // namespace tessaspaces::demo
