#include <gmock/gmock.h>

#include <algorithm>

#include "contract/X11Driver.h"
#include "model/HotkeyCommands.h"
#include "model/Snapshot.h"
#include "support/CoreTest.h"
#include "support/FaultyPlatform.h"

namespace tessaspaces {
namespace {

using contract::Backend;
using contract::desktopsPerDisplay;
using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

/// Ladders of fall-backs on a real window manager, with the upper rungs taken away.
class RealLadder : public LoggedTest, public testing::WithParamInterface<Backend> {
 protected:
  RealLadder() : driver(GetParam().make({{"main"}})), faulty(driver->platform()) { setPlatform(&faulty); }
  ~RealLadder() override {
    driver.reset();  // what goes on in the background ends on the platform that it began on
    setPlatform(nullptr);
  }

  std::vector<DesktopRef> desktops() { return Spaces::enumerate().desktops; }
  SpaceID current() { return Spaces::currentSpaceID(desktops().front()->displayUUID); }

  /// Whether the display arrives by the method.
  testing::AssertionResult arrives(std::size_t index, const std::string& method) {
    const auto target = desktops().at(index);
    std::optional<bool> end;
    Spaces::switchWithoutOverlay(target, [&](bool arrived) { end = arrived; });
    if (!driver->until([&] { return end.has_value(); })) return testing::AssertionFailure() << "the switch never ends";
    if (!*end) return testing::AssertionFailure() << "it did not arrive, last by " << Spaces::lastSwitchMethod();
    if (current() != target->spaceID) return testing::AssertionFailure() << "it shows space " << current();
    if (Spaces::lastSwitchMethod() == method) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "it went by " << Spaces::lastSwitchMethod();
  }

  std::unique_ptr<contract::WorldDriver> driver;
  FaultyPlatform faulty;
};

TEST_P(RealLadder, GoesDownRungByRung) {
  // Windows keep i3's workspaces in being; those of the target are what an activation takes hold of.
  for (int desktop = 0; desktop < desktopsPerDisplay; ++desktop) {
    driver->open({.title = "window " + std::to_string(desktop), .pid = 5001 + desktop, .desktop = desktop});
  }
  driver->settle();
  EXPECT_TRUE(arrives(1, "bridged"));

  faulty.refusesBridged = true;
  EXPECT_TRUE(arrives(2, "gesture"));
  EXPECT_TRUE(arrives(0, "gesture")) << "two desktops away, in one burst";
  EXPECT_TRUE(arrives(3, "gesture"));
  auto log = takeLog();
  EXPECT_THAT(log, Contains("[WARNING] SWITCH: bridged operation unavailable, falling back to gesture"));
  EXPECT_THAT(log, Contains(AllOf(HasSubstr("[DEBUG] SWITCH: GESTURE burst"), EndsWith("steps=3"))));
  EXPECT_EQ(faulty.rawSwitches, 0);

  faulty.makesNoEvents = true;
  EXPECT_TRUE(arrives(1, "aktivace aplikace"));
  EXPECT_EQ(faulty.rawSwitches, 0);

  faulty.ignoresActivation = true;
  EXPECT_TRUE(arrives(2, "SLS (degraded)"));
  EXPECT_EQ(faulty.rawSwitches, 1);
  EXPECT_THAT(takeLog(), Contains(HasSubstr("[WARNING] SWITCH: DEGRADED via raw SLS (active=" +
                                            std::to_string(desktops()[2]->spaceID) + ")")));
}

TEST_P(RealLadder, HoldsADesktopThatAGestureReached) {
  for (int desktop = 0; desktop < desktopsPerDisplay; ++desktop) driver->open({.desktop = desktop});
  driver->settle();
  faulty.refusesBridged = true;
  ASSERT_TRUE(arrives(1, "gesture"));
  driver->showDesktop(3);  // somebody drags the display away within the half second in which it is watched
  const SpaceID target = desktops()[1]->spaceID;
  EXPECT_TRUE(driver->until([&] { return current() == target; }));
  EXPECT_THAT(takeLog(), Contains(HasSubstr("[WARNING] SWITCH: GESTURE yanked " + std::to_string(target))));
}

TEST_P(RealLadder, CarriesAWindowThatIgnoresRequestsByItsTitleBar) {
  const WindowID window = driver->open({.title = "stubborn", .desktop = 0});
  for (int desktop = 1; desktop < desktopsPerDisplay; ++desktop) driver->open({.desktop = desktop});
  driver->showDesktop(0);
  driver->settle();
  driver->movePointer(700, 600);
  driver->focus(window);
  faulty.ignoresMoves = true;
  std::optional<bool> end;
  ASSERT_TRUE(Spaces::moveFocusedWindowToNeighbor(GridDirection::right, [&](bool moved) { end = moved; }));
  ASSERT_TRUE(driver->until([&] { return end.has_value(); }));
  const bool carries = GetParam().name == "openbox";
  EXPECT_EQ(*end, carries) << testing::PrintToString(takeLog());
  const auto expected = desktops().at(carries ? 1 : 0)->spaceID;
  EXPECT_THAT(Spaces::workspaces(window), testing::ElementsAre(expected));
  EXPECT_EQ(current(), desktops().front()->spaceID) << "the user ends where he was";
  EXPECT_EQ(faulty.inputEvents().mouseLocation(), (Point{700, 600}));
}

INSTANTIATE_TEST_SUITE_P(X11, RealLadder, testing::ValuesIn(contract::x11Backends()),
                         [](const auto& each) { return each.param.name; });

}  // namespace
}  // namespace tessaspaces
