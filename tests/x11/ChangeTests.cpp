#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "ProgramTest.h"

namespace tessaspaces::harness {
namespace {

/// The surroundings change while the program runs.
class Changes : public ProgramTest {};

constexpr auto twoMonitors = "*west 640x800+0+0 | east 640x800+640+0";

TEST_P(Changes, TheWindowManagerIsReplaced) {
  start(4);
  EXPECT_TRUE(goes(rightKey, 1));
  session().windowManager.replaceWith(GetParam() == Manager::openbox ? Manager::xfwm4 : Manager::openbox);
  EXPECT_TRUE(goes(rightKey, 1));
  session().windowManager.replaceWith(GetParam());
  EXPECT_TRUE(goes(directKey(4), 3));
  EXPECT_TRUE(goes(rightKey, 0));
}

TEST_P(Changes, NoWindowManagerRunsForAWhile) {
  start(4);
  session().windowManager.stop();
  session().keyboard.press(rightKey);
  session().windowManager.replaceWith(GetParam());
  EXPECT_TRUE(goes(directKey(3), 2));
}

TEST_P(Changes, TheKeyboardIsMappedAnew) {
  start(10);
  const Keymap before = session().keyboard.keymap();
  const auto swap = [&](KeyCombo one, std::string_view oneName, KeyCombo other, std::string_view otherName) {
    return fmt::format("keycode {} = {}\nkeycode {} = {}\n", before.keyFor(one), otherName, before.keyFor(other),
                       oneName);
  };
  const auto file = session().server.home() / "xmodmap";
  writeFile(file, swap(leftKey, "Left", rightKey, "Right") + swap(directKey(3), "3", directKey(7), "7"));
  ASSERT_EQ(session().server.run({"xmodmap", file}).status, 0);
  ASSERT_EQ(session().keyboard.keymap().keyFor(leftKey), before.keyFor(rightKey));
  EXPECT_TRUE(comesToWork(directKey(3), 2));
  EXPECT_TRUE(goes(rightKey, 3));
  EXPECT_TRUE(goes(leftKey, 2));

  // On a French keyboard the digits are typed with shift; the keys in the row of digits are meant all the same.
  ASSERT_EQ(session().server.run({"setxkbmap", "fr"}).status, 0);
  EXPECT_TRUE(comesToWork(directKey(7), 6));
  EXPECT_TRUE(goes(leftKey, 5));
}

TEST_P(Changes, DesktopsComeAndGo) {
  start(4);
  xcb_window_t added = XCB_NONE;
  if (session().windowManager.countCanChange()) {
    probe().setDesktopCount(6);
  } else {
    for (int desktop : {4, 5}) added = session().client.open({.desktop = desktop});
  }
  ASSERT_TRUE(probe().waitFor([&] { return probe().desktopCount() == 6; }));
  EXPECT_TRUE(goes(directKey(6), 5));
  EXPECT_TRUE(goes(directKey(1), 0));
  if (session().windowManager.countCanChange()) {
    probe().setDesktopCount(5);
  } else {
    session().client.close(added);
  }
  ASSERT_TRUE(probe().waitFor([&] { return probe().desktopCount() == 5; }));
  EXPECT_TRUE(refuses(directKey(6), "HOTKEY: desktop number 6 doesn't exist (have 5)"));
  EXPECT_TRUE(goes(directKey(5), 4));
}

TEST_P(Changes, WindowsComeAndGoInAStorm) {
  start(4);
  Client& client = session().client;
  std::vector<xcb_window_t> open;
  for (int round = 0; round < 25; ++round) {
    for (int i = 0; i < 8; ++i) open.push_back(client.openUnmanaged({.pid = getpid(), .desktop = i % 4}));
    session().keyboard.press(directKey(round % 4 + 1));
    for (std::size_t i = 0; i < open.size(); i += 2) client.close(open[i]);
    EXPECT_TRUE(probe().waitForDesktop(round % 4)) << "round " << round;
    for (std::size_t i = 1; i < open.size(); i += 2) client.close(open[i]);
    open.clear();
  }
  EXPECT_TRUE(goes(directKey(3), 2));
  EXPECT_TRUE(goes(rightKey, 3));
}

TEST_P(Changes, TheWindowManagerLearnsTheShapeOfTheGrid) {
  start(10, {{"tessaspaces.grid.columns", "5"}});
  const XConnection& x = probe().connection();
  const auto layoutIs = [&](std::uint32_t columns) {
    return probe().waitFor([&] {
      const auto layout = x.numbers(x.root(), "_NET_DESKTOP_LAYOUT");
      return layout.size() == 4 && layout[0] == 0 && layout[1] == columns && layout[2] == 0 && layout[3] == 0;
    });
  };
  EXPECT_TRUE(layoutIs(5));
  EXPECT_EQ(program().control({"config", "set", "tessaspaces.grid.columns", "3"}).status, 0);
  EXPECT_TRUE(layoutIs(3));
  EXPECT_TRUE(goes(downKey, 3));
  EXPECT_EQ(program().stop(), 0);
  EXPECT_TRUE(probe().waitFor([&] { return x.numbers(x.root(), "_NET_DESKTOP_LAYOUT").empty(); }))
      << "what the program set goes with it";
}

INSTANTIATE_TEST_SUITE_P(X11, Changes, testing::Values(Manager::openbox, Manager::xfwm4, Manager::i3), managerName);

class Monitors : public ProgramTest {
 protected:
  void pointAt(int x) { session().pointer.moveTo(x, 400); }
  std::string identifierOf(std::string_view monitor) {
    const auto list = nlohmann::json::parse(program().control({"list", "--json"}).output, nullptr, false);
    for (const auto& display : list.value("displays", nlohmann::json::array())) {
      if (display.value("name", "") == monitor) return display.value("identifier", "");
    }
    return {};
  }
};

TEST_P(Monitors, TheCommandIsForTheOneUnderThePointer) {
  open(6, twoMonitors, {"west", "west", "west", "east", "east", "east"});
  program().start();
  if (perMonitor()) {
    const std::vector<int> west = probe().desktopsAt(0, 0);
    const std::vector<int> east = probe().desktopsAt(640, 0);
    ASSERT_EQ(west.size(), 3u);
    ASSERT_EQ(east.size(), 3u);
    for (const auto& [x, desktops] : {std::pair(100, west), std::pair(900, east), std::pair(100, west)}) {
      pointAt(x);
      EXPECT_TRUE(goes(rightKey, desktops[1]));
      EXPECT_TRUE(goes(directKey(3), desktops[2]));
      EXPECT_TRUE(goes(rightKey, desktops[0])) << "this monitor's own list ends here";
    }
    return;
  }
  // The monitors share the desktops; each has a grid of its own shape.
  program().configure({{"tessaspaces.grid.columns." + identifierOf("east"), "2"}, {"tessaspaces.grid.columns", "3"}});
  pointAt(900);
  EXPECT_TRUE(goes(downKey, 2));
  pointAt(100);
  EXPECT_TRUE(goes(downKey, 5));
}

TEST_P(Monitors, ComeAndGo) {
  open(4, {}, {});
  program().start();
  EXPECT_TRUE(goes(rightKey, 1));
  for (int round = 0; round < 2; ++round) {
    session().server.setMonitors(twoMonitors);
    pointAt(900);
    session().keyboard.press(rightKey);
    session().server.setMonitors({});
    pointAt(100);
    ASSERT_TRUE(probe().waitFor([&] { return !perMonitor() || probe().desktopsAt(0, 0).size() == 4; }));
    EXPECT_TRUE(comesToWork(directKey(4), 3));
    EXPECT_TRUE(goes(leftKey, 2));
    EXPECT_TRUE(goes(directKey(2), 1));
  }
}

INSTANTIATE_TEST_SUITE_P(X11, Monitors, testing::Values(Manager::openbox, Manager::xfwm4, Manager::i3), managerName);

}  // namespace
}  // namespace tessaspaces::harness
