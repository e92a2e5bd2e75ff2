#include "contract/ContractTest.h"

namespace tessaspaces::contract {

using testing::Contains;
using testing::SizeIs;

TEST_P(Contract, SpacesAreNumberedAndOneIsCurrent) {
  start();
  const auto described = display();
  ASSERT_TRUE(described.spaces.has_value());
  ASSERT_THAT(*described.spaces, SizeIs(desktopsPerDisplay));
  std::set<SpaceID> ids;
  for (const auto& space : *described.spaces) {
    const auto id = space.id64.value_or(0);
    EXPECT_NE(id, 0U);
    ids.insert(id);
    EXPECT_EQ(space.managedSpaceID.value_or(id), id);
    EXPECT_EQ(space.type.value_or(0), 0);
  }
  EXPECT_THAT(ids, SizeIs(desktopsPerDisplay));
  ASSERT_TRUE(described.currentSpace.has_value());
  EXPECT_EQ(described.currentSpace->id64, spaces().front());
  EXPECT_EQ(current(), spaces().front());
  EXPECT_EQ(server().mainConnectionID(), server().mainConnectionID());
  EXPECT_TRUE(server().windowManagerName().has_value());
}

TEST_P(Contract, SwitchingMakesTheSpaceCurrentAndIsAnnounced) {
  start();
  const auto all = spaces();
  const auto name = identifier();
  struct Way {
    const char* name;
    std::function<void()> go;
    SpaceID target;
  };
  const std::vector<Way> ways{
      {"bridged", [&] { EXPECT_TRUE(switchTo(all[2])); }, all[2]},
      {"bridged, with show and hide around it",
       [&] {
         EXPECT_TRUE(server().performBridged(ShowSpaces{{all[1]}}));
         EXPECT_TRUE(switchTo(all[1]));
         EXPECT_TRUE(server().performBridged(HideSpaces{{all[0], all[2], all[3]}}));
       },
       all[1]},
      {"raw", [&] { server().managedDisplaySetCurrentSpace(name, all[3]); }, all[3]},
      {"the user's own", [&] { driver->showDesktop(0); }, all[0]},
  };
  Listener announced(server().spacesChanged);
  for (const auto& way : ways) {
    announced.heard();
    way.go();
    EXPECT_TRUE(driver->until([&] { return current() == way.target && announced.hears(); })) << way.name;
    EXPECT_EQ(display().currentSpace.value_or(ManagedSpace{}).id64, way.target) << way.name;
    driver->settle();
    EXPECT_EQ(current(), way.target) << way.name;
  }
}

TEST_P(Contract, HidingNothingIsFineAndChangesNothing) {
  start();
  const auto before = current();
  EXPECT_TRUE(server().performBridged(HideSpaces{}));
  EXPECT_TRUE(server().performBridged(ShowSpaces{{before}}));
  driver->settle();
  EXPECT_EQ(current(), before);
}

TEST_P(Contract, WhatDoesNotExistIsRefusedAndChangesNothing) {
  start();
  const auto window = driver->open({});
  const auto before = current();
  const auto name = identifier();
  const auto home = spacesOf(window);
  for (const SpaceID unknown : {SpaceID{0}, SpaceID{99}, ~SpaceID{0}, SpaceID{1} << 32}) {
    EXPECT_FALSE(switchTo(unknown)) << unknown;
    EXPECT_FALSE(server().performBridged(ShowSpaces{{unknown}})) << unknown;
    EXPECT_FALSE(server().performBridged(MoveWindowsToSpace{{window}, unknown})) << unknown;
    server().managedDisplaySetCurrentSpace(name, unknown);
    server().moveWindowsToManagedSpace(std::vector{window}, unknown);
    server().addWindowsToSpaces(std::vector{window}, std::vector{unknown});
    EXPECT_NE(server().spaceSetCompatID(unknown, 77), 0) << unknown;
    EXPECT_NE(server().setWindowListWorkspace(std::vector{window}, 77), 0) << unknown;
    EXPECT_THAT(windowsOn(unknown), testing::IsEmpty()) << unknown;
  }
  EXPECT_FALSE(server().performBridged(SetCurrentSpace{"no such display", spaces()[1]}));
  server().managedDisplaySetCurrentSpace("no such display", spaces()[1]);
  EXPECT_EQ(server().managedDisplayGetCurrentSpace("no such display"), 0U);
  driver->settle();
  EXPECT_EQ(current(), before);
  EXPECT_EQ(spacesOf(window), home);
}

TEST_P(Contract, DesktopsAreAddedAndRemoved) {
  start();
  if (driver->fixedDesktops()) {
    driver->setDesktopCount(6);
    driver->settle();
    EXPECT_THAT(spaces(), SizeIs(desktopsPerDisplay));
    return;
  }
  const auto before = spaces();
  ClientWindow onLast;
  onLast.desktop = desktopsPerDisplay - 1;
  const auto window = driver->open(onLast);
  Listener announced(server().spacesChanged);
  driver->setDesktopCount(6);
  EXPECT_TRUE(driver->until([&] { return spaces().size() == 6 && announced.hears(); }));
  const auto grown = spaces();
  EXPECT_EQ(std::vector(grown.begin(), grown.begin() + desktopsPerDisplay), before);
  EXPECT_TRUE(switchTo(grown[5]));
  EXPECT_TRUE(driver->until([&] { return current() == grown[5]; }));

  // The window and the display go to what is left.
  announced.heard();
  driver->setDesktopCount(2);
  EXPECT_TRUE(driver->until([&] { return spaces().size() == 2 && announced.hears(); }));
  EXPECT_TRUE(driver->until([&] { return current() == before[1] && spacesOf(window) == std::vector{before[1]}; }))
      << current();
  EXPECT_FALSE(switchTo(grown[5]));
}

TEST_P(Contract, WithoutAWindowManagerNothingIsKnown) {
  start();
  const auto window = driver->open({});
  const auto name = identifier();
  const auto all = spaces();
  Listener announced(server().windowManagerChanged);
  driver->stopWindowManager();
  EXPECT_TRUE(driver->until([&] { return announced.hears() && !server().windowManagerName(); }));
  EXPECT_FALSE(server().copyManagedDisplaySpaces().has_value());
  EXPECT_FALSE(server().copyWindowsOnSpace(all[0]).has_value());
  EXPECT_EQ(server().managedDisplayGetCurrentSpace(name), 0U);
  EXPECT_FALSE(server().performBridged(SetCurrentSpace{name, all[1]}));
  EXPECT_FALSE(server().performBridged(MoveWindowsToSpace{{window}, all[1]}));
  server().managedDisplaySetCurrentSpace(name, all[1]);
  EXPECT_THAT(platform().screens().screens(), SizeIs(1));
  for (const auto& finding : platform().examineSession()) {
    if (finding.fact == SessionFact::windowManager) {
      EXPECT_FALSE(finding.ok);
    }
  }
}

}  // namespace tessaspaces::contract
