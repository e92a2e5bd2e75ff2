#include <gmock/gmock.h>

#include "bridges/TitleBarDrag.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::Not;

/// A window "mail" on desktop 1 (A) of 2, the pointer elsewhere.
class TitleBarDragTest : public CoreTest {
 protected:
  void begin() {
    start("left 960x1080 | A*[mail] B");
    const auto state = world().state();
    const auto& shown = state->windows.front();
    const auto& bounds = *shown.reported.bounds;
    mail = {shown.id, "mail", shown.pid, {*bounds.x, *bounds.y, *bounds.width, *bounds.height}};
    world().setPointer(home);
    takeLog();
  }

  bool carry(const std::function<bool()>& stillWanted = {}) {
    const auto switchDesktop = [this] {
      ++switches;
      if (switchFails) return false;
      world().showSpace(2);
      return true;
    };
    return TitleBarDrag::carry(mail, switchDesktop, stillWanted);
  }

  /// Whatever came of it.
  void expectAllIsAsBefore() {
    const auto state = world().state();
    EXPECT_FALSE(state->mousePressed);
    EXPECT_EQ(state->pointer, home);
    if (const auto* window = state->window(mail.id)) {
      const auto& bounds = *window->reported.bounds;
      EXPECT_EQ((Rect{*bounds.x, *bounds.y, *bounds.width, *bounds.height}), mail.bounds);
    }
  }

  Point home{17, 23};
  SpaceWindow mail;
  bool switchFails = false;
  int switches = 0;
};

TEST_F(TitleBarDragTest, TheWindowGoesAlongAndTheRestStaysAsItWas) {
  begin();
  EXPECT_TRUE(carry());
  EXPECT_EQ(world().spacesOf(mail.id), std::vector<SpaceID>{2});
  expectAllIsAsBefore();

  // A window manager that leaves it behind: that is for the caller to see.
  begin();
  world().edit([](WorldState& state) { state.carriesDraggedWindow = false; });
  EXPECT_TRUE(carry());
  EXPECT_EQ(world().spacesOf(mail.id), std::vector<SpaceID>{1});
  expectAllIsAsBefore();
}

TEST_F(TitleBarDragTest, WhateverGoesWrongTheButtonIsUpAndThePointerBack) {
  struct Case {
    const char* name;
    std::function<void()> wrong;
    const char* said;
    int switches = 0;
    bool result = false;
  };
  const auto fault = [&](std::set<Operation> SimulatedFaults::*kind, Operation operation) {
    return [=, this] { world().editFaults([&](SimulatedFaults& faults) { (faults.*kind).insert(operation); }); };
  };
  const auto vanishBefore = [&](Operation operation) {
    return [=, this] { world().beforeNext(operation, [this] { world().removeWindow(mail.id); }); };
  };
  const std::vector<Case> cases{
      {"not permitted", [&] { sim->setPermissions(false, true); }, "not found via AX"},
      {"in vain", fault(&SimulatedFaults::unavailable, Operation::carriesHeldWindows), "would stay behind"},
      {"gone before", [&] { world().removeWindow(mail.id); }, "not found via AX"},
      {"gone at the press", vanishBefore(Operation::pressMouse), "does not follow"},
      {"gone once found", vanishBefore(Operation::windowTitleBar), "has no title bar"},
      {"no frame", fault(&SimulatedFaults::unanswered, Operation::windowFrame), "has no frame"},
      {"no title bar", fault(&SimulatedFaults::unanswered, Operation::windowTitleBar), "has no title bar"},
      {"never to be seen", fault(&SimulatedFaults::unanswered, Operation::windowIsAt), "cannot be seen"},
      {"pointer unknown", fault(&SimulatedFaults::unanswered, Operation::mouseLocation), "pointer is nowhere"},
      {"hands unknown", fault(&SimulatedFaults::unanswered, Operation::heldInput), "does not tell"},
      {"pointer refused", fault(&SimulatedFaults::unavailable, Operation::moveMouse), "cannot be reached"},
      {"pointer ignored", fault(&SimulatedFaults::ignored, Operation::moveMouse), "cannot be reached"},
      {"press refused", fault(&SimulatedFaults::unavailable, Operation::pressMouse), "takes no press"},
      {"press ignored", fault(&SimulatedFaults::ignored, Operation::pressMouse), "does not follow"},
      {"the switch fails", [&] { switchFails = true; }, "the desktop did not change", 1},
      {"the user drags something", [&] { world().edit([](WorldState& state) { state.userHoldsButton = true; }); },
       "a mouse button is down"},
      {"the user keeps the keys down", [&] { world().edit([](WorldState& state) { state.userHoldsModifier = true; }); },
       "a modifier key is down"},
      {"place ignored", fault(&SimulatedFaults::ignored, Operation::placeWindow), "came along", 1, true},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    begin();
    switches = 0;
    switchFails = false;
    each.wrong();
    EXPECT_EQ(carry(), each.result);
    EXPECT_EQ(switches, each.switches);
    EXPECT_THAT(takeLog(), Contains(HasSubstr(each.said)));
    expectAllIsAsBefore();
  }
}

TEST_F(TitleBarDragTest, TakesTheWindowWhereNothingLiesOverIt) {
  begin();
  // Over the middle of the title bar, but not all of it.
  WindowSetup setup;
  setup.title = "cover";
  setup.bounds = {mail.bounds.center().x - 20, mail.bounds.y - 10, 40, 40};
  setup.layer = 20;
  world().addWindow(setup);
  EXPECT_TRUE(carry());
  EXPECT_EQ(world().spacesOf(mail.id), std::vector<SpaceID>{2});
  EXPECT_FALSE(world().asked(Operation::raiseWindow));

  // Over all of it: raised first.
  begin();
  setup.layer = 0;
  setup.bounds = mail.bounds;
  world().addWindow(setup);
  EXPECT_TRUE(carry());
  EXPECT_EQ(world().spacesOf(mail.id), std::vector<SpaceID>{2});
  expectAllIsAsBefore();

  // By something that stays above.
  begin();
  setup.layer = 20;
  world().addWindow(setup);
  world().editFaults([](SimulatedFaults& faults) { faults.ignored.insert(Operation::raiseWindow); });
  EXPECT_FALSE(carry());
  EXPECT_FALSE(world().asked(Operation::pressMouse));
  expectAllIsAsBefore();
}

TEST_F(TitleBarDragTest, WaitsForTheHotKeyToBeLetGo) {
  begin();
  world().edit([](WorldState& state) { state.userHoldsModifier = true; });
  sim->time().outside(400ms, [this] { world().edit([](WorldState& state) { state.userHoldsModifier = false; }); });
  world().beforeNext(Operation::pressMouse, [this] { EXPECT_GE(sim->time().now().time_since_epoch(), 400ms); });
  EXPECT_TRUE(carry());
  EXPECT_EQ(world().spacesOf(mail.id), std::vector<SpaceID>{2});
}

TEST_F(TitleBarDragTest, StartsFromWhereThingsAreOnceTheHandsAreOff) {
  begin();
  const Point elsewhere{800, 900};
  world().edit([](WorldState& state) { state.userHoldsModifier = true; });
  sim->time().outside(400ms, [&] {
    world().setPointer(elsewhere);
    platform().accessibility().find(mail.pid, mail.id)->place({30, 40, 500, 300});
    world().edit([](WorldState& state) { state.userHoldsModifier = false; });
  });
  EXPECT_TRUE(carry());
  home = elsewhere;
  mail.bounds = {30, 40, 500, 300};
  expectAllIsAsBefore();
}

TEST_F(TitleBarDragTest, AUserWhoHasGoneElsewhereIsLeftAlone) {
  struct Case {
    const char* name;
    Operation question;
    bool covered;
    std::vector<Operation> neverAsked;
  };
  // The user goes just before the given question.
  const std::vector<Case> cases{
      {"while the keys are down", Operation::heldInput, false, {Operation::raiseWindow, Operation::moveMouse}},
      {"before it is raised", Operation::windowIsAt, true, {Operation::raiseWindow, Operation::moveMouse}},
      {"before the press", Operation::mouseLocation, false, {Operation::moveMouse, Operation::pressMouse}},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    begin();
    if (each.covered) {
      WindowSetup setup;
      setup.title = "cover";
      setup.bounds = mail.bounds;
      world().addWindow(setup);
    }
    world().clearCalls();
    bool gone = false;
    world().beforeNext(each.question, [&] {
      gone = true;
      world().showSpace(2);
    });
    switches = 0;
    EXPECT_FALSE(carry([&] { return !gone; }));
    EXPECT_TRUE(gone);
    EXPECT_EQ(switches, 0);
    for (const auto operation : each.neverAsked) EXPECT_FALSE(world().asked(operation)) << operationName(operation);
    EXPECT_EQ(world().currentSpace("left"), 2U);
    EXPECT_THAT(takeLog(), Each(Not(HasSubstr("[WARNING]"))));
    expectAllIsAsBefore();
  }
}

TEST_F(TitleBarDragTest, OneWindowAtATime) {
  begin();
  bool nested = true;
  EXPECT_TRUE(TitleBarDrag::carry(mail, [&] {
    nested = carry();
    return true;
  }));
  EXPECT_FALSE(nested);
  EXPECT_EQ(switches, 0);
  expectAllIsAsBefore();
}

TEST_F(TitleBarDragTest, AReleaseThatIsRefusedOnceIsAskedForAgain) {
  begin();
  world().editFaults([](SimulatedFaults& faults) { faults.unavailable.insert(Operation::releaseMouse); });
  world().beforeNext(Operation::releaseMouse, [this] { world().setFaults({}); });
  carry();
  expectAllIsAsBefore();
}

}  // namespace
}  // namespace tessaspaces
