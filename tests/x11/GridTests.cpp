#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <thread>

#include "ProgramTest.h"
#include "harness/Overview.h"

namespace tessaspaces::harness {
namespace {

constexpr auto twoMonitors = "*west 640x800+0+0 | east 640x800+640+0";

/// The overview of the running program, opened by its key and used by mouse and keyboard.
class Grid : public ProgramTest {
 protected:
  /// Four desktops in two rows, and no zoom unless asked for.
  void begin(std::vector<Setting> settings = {}) {
    open(4);
    overview_.emplace(session(), 2, 2);
    run(std::move(settings));
  }
  /// The same on two monitors side by side; under i3 two desktops on each, else all four on both.
  void beginOnTwoMonitors() {
    open(4, twoMonitors, {"west", "west", "east", "east"});
    overview_.emplace(session(), 2, 2, std::vector<Rectangle>{{0, 0, 640, 800}, {640, 0, 640, 800}});
    run({});
  }

  Overview& overview() { return *overview_; }

  /// Opens a window and waits until it can be seen, if its desktop is the one that is shown: a window that comes up
  /// over the overview closes it, and rightly so.
  xcb_window_t openWindow(const std::string& title, int desktop) {
    const xcb_window_t window =
        session().client.open({.title = title, .frame = {200, 160, 500, 340}, .pid = getpid(), .desktop = desktop});
    if (probe().currentDesktop() == desktop) {
      EXPECT_TRUE(probe().waitFor([&] { return probe().viewable(window); }));
    }
    return window;
  }

  /// Where the window's content is on the screen.
  Rectangle areaOf(xcb_window_t window) {
    const XConnection& x = probe().connection();
    const auto size = x.reply(xcb_get_geometry_reply, xcb_get_geometry(x.get(), window));
    const auto at =
        x.reply(xcb_translate_coordinates_reply, xcb_translate_coordinates(x.get(), window, x.root(), 0, 0));
    if (!size || !at) throw Failure("no such window");
    return {at->dst_x, at->dst_y, size->width, size->height};
  }
  /// The middle of its preview in the tile at `index` of `count`.
  std::pair<int, int> previewOf(xcb_window_t window, int index, int count = 4, std::size_t monitor = 0) {
    const Rectangle area = areaOf(window);
    return overview().pointInTile(index, count, area.x + area.width / 2, area.y + area.height / 2, monitor);
  }
  /// Asks again and again: for what no event tells the onlooker of, as of windows that are not on screen.
  static bool comesTrue(const std::function<bool()>& holds) {
    const Deadline deadline(patience);
    while (!holds()) {
      if (deadline.passed()) return false;
      std::this_thread::sleep_for(Milliseconds(20));
    }
    return true;
  }
  void drag(std::pair<int, int> from, std::pair<int, int> to) {
    session().pointer.moveTo(from.first, from.second);
    session().pointer.press();
    session().pointer.glideTo(to.first, to.second);
    session().pointer.release();
  }
  void clickAt(std::pair<int, int> at, int button = 1) {
    session().pointer.moveTo(at.first, at.second);
    session().pointer.click(button);
  }
  /// The overview is gone and that desktop is the current one.
  testing::AssertionResult leadsTo(int desktop) {
    if (!overview().waitUntilClosed()) return testing::AssertionFailure() << "the overview stays open";
    if (probe().waitForDesktop(desktop)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "desktop " << probe().currentDesktop().value_or(-1) << ", not " << desktop;
  }
  testing::AssertionResult movesTo(xcb_window_t window, int desktop) {
    if (probe().waitFor([&] { return probe().desktopOf(window) == desktop; })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the window is on " << probe().desktopOf(window).value_or(-1);
  }

 private:
  void run(std::vector<Setting> settings) {
    settings.insert(settings.begin(), {{"tessaspaces.grid.rows", "2"},
                                       {"tessaspaces.grid.columns", "2"},
                                       {"tessaspaces.transition.gridZoom", "false"}});
    program().start(settings);
  }

  std::optional<Overview> overview_;
};

TEST_P(Grid, GoesWhereOneClicks) {
  begin();
  const xcb_window_t window = openWindow("sample", 0);
  overview().open();
  clickAt(overview().middle(3, 4));
  EXPECT_TRUE(leadsTo(3));
  EXPECT_TRUE(program().waitForLog("SWITCH: check after 1s — active=")) << "the check comes a second later";

  overview().open();
  clickAt(previewOf(window, 0));
  EXPECT_TRUE(leadsTo(0));
  EXPECT_TRUE(probe().waitFor([&] { return probe().activeWindow() == window; })) << "a preview leads to its window";

  // With its zoom, and closed by a click beside the tiles and by its own key.
  program().configure({{"tessaspaces.transition.gridZoom", "true"}});
  overview().open();
  clickAt({6, 794});
  EXPECT_TRUE(leadsTo(0));
  overview().open();
  overview().close();
  overview().open();
  clickAt(overview().middle(2, 4));
  EXPECT_TRUE(leadsTo(2));
}

TEST_P(Grid, TakesWindowsWhereOneDragsThem) {
  begin();
  const xcb_window_t window = openWindow("sample", 0);
  overview().open();
  const auto place = previewOf(window, 0);
  drag(place, overview().middle(1, 4));
  EXPECT_TRUE(movesTo(window, 1));
  EXPECT_EQ(probe().currentDesktop(), 0);
  EXPECT_EQ(overview().panels().size(), 1u) << "for the next one";

  if (!perMonitor()) {
    // Held by its middle and dropped in the tile's, it stands in the middle of the screen.
    const auto middleOf = [&] { return areaOf(window).x + areaOf(window).width / 2; };
    EXPECT_TRUE(comesTrue([&] { return std::abs(middleOf() - 640) < 40; })) << middleOf();
    // Within its tile it goes where it is dropped: a quarter of the screen to the left. The overview may still be
    // learning where the window is now, so a drag is tried until one has taken hold of it.
    const int step = overview().content(1, 4).width / 4;
    EXPECT_TRUE(comesTrue([&] {
      const auto from = previewOf(window, 1);
      drag(from, {from.first - step, from.second});
      const Deadline soon(Milliseconds(1'000));
      while (middleOf() > 560 && !soon.passed()) std::this_thread::sleep_for(Milliseconds(20));
      return middleOf() <= 560;
    })) << middleOf();
    EXPECT_GE(middleOf(), 0);
  }

  // Neither a drop beside the tiles nor one that is called off moves anything.
  const std::size_t from = program().logEnd();
  drag(previewOf(window, 1), {4, 796});
  EXPECT_TRUE(program().waitForLog(fmt::format("DROP: window {} released outside any desktop tile", window), from));
  const auto [x, y] = previewOf(window, 1);
  session().pointer.moveTo(x, y);
  session().pointer.press();
  session().pointer.glideTo(overview().middle(3, 4).first, overview().middle(3, 4).second);
  session().keyboard.strike(keys::escape);
  session().pointer.release();
  EXPECT_EQ(overview().panels().size(), 1u) << "Escape ends the drag, not the overview";
  session().keyboard.strike(keys::escape);
  EXPECT_TRUE(leadsTo(0));
  EXPECT_EQ(probe().desktopOf(window), 1);
}

TEST_P(Grid, IsUsedByKeysAlone) {
  begin();
  const xcb_window_t mail = openWindow("Letters to Ålesund", 1);
  openWindow("Other", 0);
  overview().open();
  session().keyboard.strike(keys::down);
  session().keyboard.strike(keys::right);
  session().keyboard.strike(keys::enter);
  EXPECT_TRUE(leadsTo(3));
  overview().open();
  session().keyboard.type("3");
  EXPECT_TRUE(leadsTo(2));
  overview().open();
  session().keyboard.type("to alesund");
  session().keyboard.strike(keys::enter);
  EXPECT_TRUE(leadsTo(1));
  EXPECT_TRUE(probe().waitFor([&] { return probe().activeWindow() == mail; }));

  overview().open();
  session().keyboard.strike(keys::f2);
  session().keyboard.type("Post");
  session().keyboard.strike(keys::enter);
  EXPECT_TRUE(waitForText(program().settingsFile(), "\"Post\""));
  session().keyboard.type("letters");
  session().keyboard.strike(keys::remove);
  EXPECT_TRUE(comesTrue([&] {
    session().client.answerCloseRequests();
    return !probe().manages(mail);
  })) << "Delete closes the best match";
  session().keyboard.strike(keys::escape);
  session().keyboard.strike(keys::escape);
  EXPECT_TRUE(overview().waitUntilClosed());
}

TEST_P(Grid, AddsAndRemovesDesktopsAndClosesWindows) {
  begin({{"tessaspaces.grid.columns", "3"}});
  overview().resize(2, 3);
  const xcb_window_t window = openWindow("to be closed", 0);
  const auto count = [&](int wanted) { return comesTrue([&] { return probe().desktopCount() == wanted; }); };
  overview().open();
  clickAt(previewOf(window, 0), 2);
  EXPECT_TRUE(comesTrue([&] {
    session().client.answerCloseRequests();
    return !probe().manages(window);
  })) << "a middle click closes";

  clickAt(overview().middle(4, 4));
  EXPECT_TRUE(count(5)) << "the place for one more desktop was clicked";
  EXPECT_FALSE(overview().panels().empty());
  // The overview learns of it a moment later, and then it is the last of the tiles: empty, and so it can go.
  EXPECT_TRUE(comesTrue([&] {
    session().keyboard.strike(keys::end);
    session().keyboard.strike(keys::remove);
    const Deadline soon(Milliseconds(5'000));
    while (probe().desktopCount() != 4 && !soon.passed()) std::this_thread::sleep_for(Milliseconds(20));
    return probe().desktopCount() == 4;
  }));
  EXPECT_TRUE(count(4));
  overview().close();
}

TEST_P(Grid, LetsNothingThrough) {
  begin();
  const xcb_window_t window = openWindow("below", 0);
  const XConnection& x = session().client.connection();
  const std::uint32_t mask = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
                             XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(x.get(), window, XCB_CW_EVENT_MASK, &mask);
  probe().activate(window);
  ASSERT_TRUE(probe().waitFor([&] { return probe().activeWindow() == window; }));
  x.roundTrip();
  overview().open();
  const auto heard = [&] {
    int count = 0;
    x.roundTrip();
    while (const auto event = x.nextEvent(Deadline(Milliseconds(0)))) {
      const int type = event->response_type & 0x7F;
      if (type >= XCB_KEY_PRESS && type <= XCB_BUTTON_RELEASE) ++count;
    }
    return count;
  };
  heard();
  const auto [middleX, middleY] = std::pair(areaOf(window).x + 20, areaOf(window).y + 20);
  session().pointer.moveTo(middleX, middleY);
  session().pointer.click(2);
  session().pointer.click(3);
  session().keyboard.strike(keys::escape);  // the menu
  session().keyboard.type("quick brown fox");
  session().keyboard.strike(keys::tab);
  session().keyboard.press(rightKey);
  session().keyboard.strike(keys::escape);  // the filter
  EXPECT_EQ(heard(), 0);
  EXPECT_FALSE(overview().panels().empty());
  overview().close();
  EXPECT_TRUE(probe().waitFor([&] { return !overview().keyboardIsTaken(); })) << "given back";
}

TEST_P(Grid, DoesNotFlapUnderAHeldKey) {
  begin();
  // Repeats come as soon and as fast as a server sends them.
  ASSERT_EQ(session().server.run({"xset", "r", "rate", "100", "50"}).status, 0);
  const auto staysFor = [&](std::size_t panels) {
    const Deadline deadline(Milliseconds(600));
    while (!deadline.passed()) {
      if (overview().panels().size() != panels) return false;
      std::this_thread::sleep_for(Milliseconds(20));
    }
    return true;
  };
  session().keyboard.keyDown(Overview::key);
  ASSERT_TRUE(overview().waitUntilOpen());
  EXPECT_TRUE(staysFor(1)) << "the key that opened it, still held";
  session().keyboard.keyUp(Overview::key);
  ASSERT_TRUE(comesTrue([&] { return overview().keyboardIsTaken(); }));
  // No hand lets a key go and presses it in the same millisecond, which is what tells a repeat.
  std::this_thread::sleep_for(Milliseconds(20));
  session().keyboard.keyDown(Overview::key);
  ASSERT_TRUE(overview().waitUntilClosed());
  EXPECT_TRUE(staysFor(0)) << "the key that closed it, still held";
  session().keyboard.keyUp(Overview::key);
  EXPECT_TRUE(comesTrue([&] {
    session().keyboard.press(Overview::key);
    return overview().waitUntilOpen(Milliseconds(300));
  })) << "let go of and pressed again";
}

TEST_P(Grid, SpansTwoMonitors) {
  beginOnTwoMonitors();
  const xcb_window_t window =
      session().client.open({.title = "traveller", .frame = {120, 160, 400, 340}, .pid = getpid()});
  ASSERT_TRUE(probe().waitFor([&] { return probe().viewable(window); }));
  const std::array<std::vector<int>, 2> desktops =
      perMonitor() ? std::array{probe().desktopsAt(0, 0), probe().desktopsAt(640, 0)}
                   : std::array{std::vector{0, 1, 2, 3}, std::vector{0, 1, 2, 3}};
  const auto middle = [&] { return areaOf(window).x + areaOf(window).width / 2; };
  // i3 opens windows on whichever monitor has its focus.
  const std::size_t from = middle() < 640 ? 0 : 1;
  const std::size_t to = 1 - from;
  const auto place = std::find(desktops[from].begin(), desktops[from].end(), probe().desktopOf(window).value_or(-1));
  ASSERT_NE(place, desktops[from].end());
  const int count = static_cast<int>(desktops[from].size());
  overview().open();
  EXPECT_EQ(overview().panels().size(), 2u);
  drag(previewOf(window, static_cast<int>(place - desktops[from].begin()), count, from),
       overview().middle(0, count, to));
  EXPECT_TRUE(movesTo(window, desktops[to].front()));
  if (!perMonitor()) {
    EXPECT_TRUE(comesTrue([&] { return middle() >= 640; })) << middle();
  }
  EXPECT_EQ(overview().panels().size(), 2u);
  clickAt(overview().middle(1, count, to));
  EXPECT_TRUE(leadsTo(desktops[to].at(1))) << "one click closes both";
}

TEST_P(Grid, OutlivesWhatHappensAroundIt) {
  begin();
  openWindow("sample", 0);
  overview().open();
  session().server.setMonitors(twoMonitors);
  EXPECT_TRUE(overview().waitUntilClosed()) << "the displays are others now";
  const std::size_t from = program().logEnd();
  session().server.setMonitors({});
  ASSERT_TRUE(program().waitForLog("GRID: displays changed (1 connected)", from));

  const auto opens = [&] {
    session().keyboard.press(Overview::key);
    return overview().waitUntilOpen() && comesTrue([&] { return overview().keyboardIsTaken(); });
  };
  ASSERT_TRUE(opens());
  // Windows come and go below it.
  for (int i = 0; i < 20; ++i) {
    const xcb_window_t window = session().client.openUnmanaged({.title = "brief", .pid = getpid(), .desktop = 1});
    session().client.close(window);
  }
  session().keyboard.press(directKey(2));
  session().windowManager.replaceWith(GetParam() == Manager::openbox ? Manager::xfwm4 : Manager::openbox);
  if (overview().panels().empty()) {
    ASSERT_TRUE(opens());
  }
  session().keyboard.strike(keys::escape);
  EXPECT_TRUE(overview().waitUntilClosed());
  EXPECT_TRUE(comesToWork(directKey(3), 2)) << "and the program works on";
}

TEST_P(Grid, ChecksItself) {
  begin();
  openWindow("one", 0);
  openWindow("two", 2);
  EXPECT_EQ(program().stop(), 0);
  const Result result = session().server.run({Program::binary(), "--test-grid"});
  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_NE(result.output.find("checks"), std::string::npos) << result.output;
}

INSTANTIATE_TEST_SUITE_P(X11, Grid, testing::Values(Manager::openbox, Manager::xfwm4, Manager::i3), managerName);

}  // namespace
}  // namespace tessaspaces::harness
