#include "demo/Tour.h"

#include <fmt/format.h>
#include <unistd.h>

#include "demo/GridTour.h"
#include "demo/Samples.h"
#include "demo/Scene.h"

namespace tessaspaces::demo {
namespace {

using namespace harness;

const Setting nextRow{"tessaspaces.circulation.join", "0"};
const Setting sameRow{"tessaspaces.circulation.join", "1"};

void neighbours(Session& session, Witness& witness) {
  witness.heading("To the neighbours");
  witness.pressAndExpectDesktop(rightKey, 1);
  witness.picture("right");
  witness.pressAndExpectDesktop(leftKey, 0);
  witness.pressAndExpectDesktop(downKey, 4);
  witness.picture("down");
  witness.pressAndExpectDesktop(upKey, 0);
  witness.heading("Straight to a desktop");
  witness.pressAndExpectDesktop(directKey(4), 3);
  witness.pressAndExpectDesktop(directKey(10), 9);
  session.keyboard.press(leftKey);
  session.keyboard.press(directKey(2));
  witness.note("a second key right after the first one overtakes it:");
  witness.pressAndExpectDesktop(directKey(3), 2);
  // Long enough for a first switch that did not give up to pull the desktop back.
  const bool stayed = !session.probe.waitFor([&] { return session.probe.currentDesktop() != 2; }, Milliseconds(1'000));
  witness.verdict("one second later", "desktop 3", stayed ? "desktop 3" : "another desktop", stayed);
}

void wrapping(Witness& witness) {
  witness.heading("At the end of a row, to the next row");
  witness.configure({nextRow});
  witness.begin(3);
  witness.pressAndExpectDesktop(rightKey, 4);
  witness.pressAndExpectDesktop(leftKey, 3);
  witness.heading("At the end of a row, to the start of the same row");
  witness.configure({sameRow});
  witness.begin(3);
  witness.pressAndExpectDesktop(rightKey, 0);
  witness.begin(9);
  witness.pressAndExpectDesktop(rightKey, 8);
  witness.heading("Over the top, where the last row is short");
  witness.configure({nextRow, {"tessaspaces.circulation.vertical", "true"}});
  witness.begin(1);
  witness.pressAndExpectDesktop(upKey, 9);
  witness.pressAndExpectDesktop(downKey, 1);
  witness.begin(2);
  witness.pressAndExpectDesktop(upKey, 6);
  witness.pressAndExpectDesktop(downKey, 2);
}

void edges(Witness& witness) {
  witness.heading("At the edge with wrapping off");
  witness.configure({{"tessaspaces.circulation.enabled", "false"}});
  witness.begin(3);
  witness.pressAndExpectRefusal(rightKey, "HOTKEY: at grid edge (right), not switching anywhere");
  witness.pressAndExpectRefusal(upKey, "HOTKEY: at grid edge (up), not switching anywhere");
  witness.configure({{"tessaspaces.circulation.enabled", "true"}});
}

void carrying(Session& session, Witness& witness) {
  witness.heading("Carrying the focused window along");
  witness.configure({{"tessaspaces.hotkey.1", "control+option+shift"}});
  witness.begin(0);
  const xcb_window_t window =
      session.client.open({.title = "Travelling window", .colour = 0xB5483C, .pid = getpid(), .desktop = 0});
  sample(11, 480, 320).picture.putInto(session.client.connection(), window);
  session.probe.activate(window);
  if (!session.probe.waitFor([&] { return session.probe.activeWindow() == window; })) {
    throw Failure("the window manager does not focus a new window");
  }
  witness.picture("before-moving");
  const KeyCombo combo{rightKey.keyCode, controlOption | KeyCombo::shift};
  session.keyboard.press(combo);
  const bool moved = session.probe.waitFor([&] { return session.probe.desktopOf(window) == 1; }, Milliseconds(5'000));
  const auto found = session.probe.desktopOf(window);
  witness.verdict(fmt::format("pressed {} with the window focused on desktop 1", combo.display()),
                  "the window on desktop 2", found ? fmt::format("the window on desktop {}", *found + 1) : "nothing",
                  moved);
  witness.pressAndExpectDesktop(rightKey, 1);
  witness.verdict("and there", "the window in sight", session.probe.viewable(window) ? "it is viewable" : "it is not",
                  session.probe.waitFor([&] { return session.probe.viewable(window); }, Milliseconds(5'000)));
  witness.picture("moved-window");
}

void clash(Session& session, Witness& witness) {
  witness.heading("A key that another program holds");
  const std::uint32_t modifiers = KeyCombo::control | KeyCombo::shift;
  const KeyCombo taken{rightKey.keyCode, modifiers};
  KeyHolder other(session.server);
  witness.verdict(fmt::format("another program takes {}", taken.display()), "it is free", "granted", other.hold(taken));
  const std::size_t from = session.program.logEnd();
  witness.configure({{"tessaspaces.hotkey.0", "control+shift"}});
  const std::string line =
      fmt::format("HOTKEY: registration 'change space right' ({}) FAILED, status=10", taken.display());
  const bool told = session.program.waitForLog(line, from, Milliseconds(5'000));
  witness.verdict("the program finds out", fmt::format("\"{}\"", line), told ? "the line is there" : "no such line",
                  told, "the log");
  witness.begin(1);
  witness.pressAndExpectDesktop({leftKey.keyCode, modifiers}, 0);
  witness.note("the other keys of the group work on; freed and chosen anew, so does this one:");
  other.letGo(taken);
  witness.configure({{"tessaspaces.hotkey.0", "control+option"}});
  witness.configure({{"tessaspaces.hotkey.0", "control+shift"}});
  witness.pressAndExpectDesktop(taken, 1);
}

}  // namespace

void tour(Session& session, Witness& witness) {
  witness.heading("Starting the program");
  session.program.start({{"tessaspaces.grid.rows", "3"}, {"tessaspaces.grid.columns", std::to_string(columns)}});
  witness.verdict("after the start", "its hot keys taken",
                  KeyHolder(session.server).isTaken(rightKey) ? "taken" : "free",
                  KeyHolder(session.server).isTaken(rightKey));
  witness.picture("start");
  neighbours(session, witness);
  wrapping(witness);
  edges(witness);
  carrying(session, witness);
  tourOfTheGrid(session, witness);
  clash(session, witness);
  witness.heading("Ending the program");
  const auto status = session.program.stop();
  const std::string found = status ? fmt::format("exit status {}", *status) : "it did not end";
  witness.verdict("sent SIGTERM", "a clean end with exit status 0", found, status == 0, "the system");
}

}  // namespace tessaspaces::demo
