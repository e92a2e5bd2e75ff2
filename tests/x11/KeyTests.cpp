#include <fmt/format.h>

#include "ProgramTest.h"

namespace tessaspaces::harness {
namespace {

class Keys : public ProgramTest {};

const Setting nextRow{"tessaspaces.circulation.join", "0"};
const Setting sameRow{"tessaspaces.circulation.join", "1"};
const Setting vertical{"tessaspaces.circulation.vertical", "true"};

// Ten desktops in rows of four: 0-3, 4-7 and the short row 8-9.
TEST_P(Keys, MoveThroughTheGrid) {
  start(10, {nextRow});
  EXPECT_TRUE(goes(rightKey, 1));
  EXPECT_TRUE(goes(leftKey, 0));
  EXPECT_TRUE(goes(downKey, 4));
  EXPECT_TRUE(goes(upKey, 0));
  EXPECT_TRUE(goes(directKey(4), 3));
  EXPECT_TRUE(goes(rightKey, 4)) << "the row ends, the next one begins";
  EXPECT_TRUE(goes(directKey(10), 9));
  EXPECT_TRUE(goes(rightKey, 0)) << "the list ends";

  program().configure({sameRow, vertical});
  EXPECT_TRUE(goes(leftKey, 3));
  EXPECT_TRUE(goes(rightKey, 0));
  EXPECT_TRUE(goes(directKey(2), 1));
  EXPECT_TRUE(goes(upKey, 9)) << "the short row reaches this column";
  EXPECT_TRUE(goes(downKey, 1));
  EXPECT_TRUE(goes(directKey(3), 2));
  EXPECT_TRUE(goes(upKey, 6)) << "and not this one";
  EXPECT_TRUE(goes(downKey, 2));

  program().configure({{"tessaspaces.circulation.enabled", "false"}});
  EXPECT_TRUE(refuses(upKey, "HOTKEY: at grid edge (up), not switching anywhere"));
  EXPECT_TRUE(goes(directKey(4), 3));
  EXPECT_TRUE(refuses(rightKey, "HOTKEY: at grid edge (right), not switching anywhere"));
  EXPECT_TRUE(goes(leftKey, 2)) << "what is not an edge still works";
}

TEST_P(Keys, CarryTheFocusedWindow) {
  start(4, {{"tessaspaces.hotkey.1", "control+option+shift"}});
  const xcb_window_t stays = session().client.open({.title = "stays", .pid = getpid(), .desktop = 0});
  const xcb_window_t window = session().client.open({.title = "moves", .pid = getpid(), .desktop = 0});
  probe().activate(window);
  ASSERT_TRUE(probe().waitFor([&] { return probe().activeWindow() == window; }));
  session().keyboard.press({rightKey.keyCode, controlOption | KeyCombo::shift});
  EXPECT_TRUE(probe().waitFor([&] { return probe().desktopOf(window) == 1; }));
  EXPECT_EQ(probe().desktopOf(stays), 0);
  EXPECT_EQ(probe().currentDesktop(), 0) << "the user stays where they are";
}

TEST_P(Keys, OfAnotherProgramAreReportedAndTheRestWorks) {
  open(4);
  KeyHolder other(session().server);
  ASSERT_TRUE(other.hold(rightKey));
  program().start();
  EXPECT_THAT(program().log(),
              testing::HasSubstr(
                  fmt::format("HOTKEY: registration 'change space right' ({}) FAILED, status=10", rightKey.display())));
  EXPECT_TRUE(goes(directKey(2), 1));
  EXPECT_TRUE(goes(leftKey, 0));
}

// The first switch must not fight the second one: half a second later it would pull the desktop back.
TEST_P(Keys, PressedInQuickSuccessionLeadToTheLast) {
  start(10);
  for (const int number : {7, 2, 9, 3, 10, 4}) session().keyboard.press(directKey(number));
  EXPECT_TRUE(probe().waitForDesktop(3));
  EXPECT_TRUE(goes(directKey(5), 4));
  EXPECT_FALSE(probe().waitFor([&] { return probe().currentDesktop() != 4; }, Milliseconds(800)));
}

/// i3 drops an empty workspace as soon as it is left, and every other one gets another number.
class EmptyWorkspaces : public ProgramTest {
 protected:
  bool showEmptyWorkspaceBeforeTheOthers() {
    session().server.run({"i3-msg", "workspace", "0"});
    return probe().waitFor([&] { return probe().desktopCount() == 5 && probe().currentDesktop() == 0; });
  }
  bool isLastOf(int desktops, int current) {
    const auto arrived = [&] { return probe().desktopCount() == desktops && probe().currentDesktop() == current; };
    return probe().waitFor(arrived) && !probe().waitFor([&] { return !arrived(); }, Milliseconds(800));
  }
};

TEST_P(EmptyWorkspaces, AreLeftForTheOneThatWasMeant) {
  start(4);
  ASSERT_TRUE(showEmptyWorkspaceBeforeTheOthers());
  session().keyboard.press(rightKey);
  EXPECT_TRUE(isLastOf(4, 0)) << "the next workspace, which is the first now";
  ASSERT_TRUE(showEmptyWorkspaceBeforeTheOthers());
  session().keyboard.press(directKey(4));
  EXPECT_TRUE(isLastOf(4, 2));
  ASSERT_TRUE(showEmptyWorkspaceBeforeTheOthers());
  EXPECT_EQ(program().control({"switch", "2"}).status, 0);
  EXPECT_TRUE(isLastOf(4, 0));
}

INSTANTIATE_TEST_SUITE_P(X11, EmptyWorkspaces, testing::Values(Manager::i3), managerName);
INSTANTIATE_TEST_SUITE_P(X11, Keys, testing::Values(Manager::openbox, Manager::xfwm4, Manager::i3), managerName);

}  // namespace
}  // namespace tessaspaces::harness
