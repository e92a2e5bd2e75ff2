#include <algorithm>

#include "contract/ContractTest.h"

namespace tessaspaces::contract {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::UnorderedElementsAre;

namespace {

ClientWindow titled(const std::string& title, int desktop = 0, std::int32_t pid = 5001) {
  ClientWindow window;
  window.title = title;
  window.desktop = desktop;
  window.pid = pid;
  return window;
}

/// Those of `wanted` that `list` has, in the list's order.
std::vector<WindowID> only(const std::vector<WindowID>& list, const std::vector<WindowID>& wanted) {
  std::vector<WindowID> found;
  std::copy_if(list.begin(), list.end(), std::back_inserter(found),
               [&](WindowID window) { return std::find(wanted.begin(), wanted.end(), window) != wanted.end(); });
  return found;
}

std::vector<WindowID> numbersOf(const std::vector<WindowInfo>& list) {
  std::vector<WindowID> numbers;
  for (const auto& window : list) numbers.push_back(window.number.value_or(0));
  return numbers;
}

}  // namespace

TEST_P(Contract, WindowsAreListedWithTheirParticulars) {
  start();
  Listener announced(server().windowsChanged);
  auto wanted = titled("Ångström — notes", 0, 5002);
  const auto window = driver->open(wanted);
  ASSERT_TRUE(driver->until([&] { return info(window).has_value() && announced.hears(); }));
  const auto entry = *info(window);
  EXPECT_EQ(entry.layer, 0);
  EXPECT_EQ(entry.ownerPid, 5002);
  EXPECT_EQ(entry.name, wanted.title);
  ASSERT_TRUE(entry.bounds && entry.bounds->x && entry.bounds->y && entry.bounds->width && entry.bounds->height);
  const Rect bounds{*entry.bounds->x, *entry.bounds->y, *entry.bounds->width, *entry.bounds->height};
  const Rect root{0, 0, 1920, 1080};
  EXPECT_TRUE(root.intersects(bounds));
  if (!driver->tiles()) {
    EXPECT_GE(bounds.width, wanted.width);
    EXPECT_LT(bounds.width, wanted.width + 100) << "a frame is not that wide";
    EXPECT_GE(bounds.height, wanted.height);
    EXPECT_LT(bounds.height, wanted.height + 100) << "a frame is not that high";
    EXPECT_LT(std::abs(bounds.y - wanted.y), 100) << "from the top";
  }

  announced.heard();
  driver->close(window);
  EXPECT_TRUE(driver->until([&] { return !info(window) && announced.hears(); }));
  EXPECT_THAT(windowsOn(spaces()[0]), Not(Contains(window)));
  EXPECT_THAT(spacesOf(window), IsEmpty());
  EXPECT_FALSE(isOnScreen(window));
}

TEST_P(Contract, WindowsOfASpaceComeFrontToBack) {
  start();
  const std::vector<WindowID> opened{driver->open(titled("one")), driver->open(titled("two")),
                                     driver->open(titled("three"))};
  const auto elsewhere = driver->open(titled("elsewhere", 1));
  const auto home = spaces()[0];
  for (const auto front : {opened[0], opened[1], opened[2], opened[0]}) {
    driver->focus(front);
    driver->settle();
    const auto onSpace = only(windowsOn(home), opened);
    EXPECT_THAT(onSpace, testing::SizeIs(3));
    const auto all = platform().windowList().copyWindowInfo(WindowListOption::all);
    ASSERT_TRUE(all.has_value());
    EXPECT_EQ(only(numbersOf(*all), opened), onSpace) << "one order for both lists";
    if (!driver->tiles()) {
      EXPECT_EQ(onSpace.front(), front);
    }
  }
  EXPECT_THAT(windowsOn(home), Not(Contains(elsewhere)));
  EXPECT_THAT(windowsOn(spaces()[1]), Contains(elsewhere));
}

TEST_P(Contract, OnlyTheShownDesktopIsOnScreen) {
  start();
  const auto here = driver->open(titled("here"));
  const auto there = driver->open(titled("there", 2));
  EXPECT_TRUE(driver->until([&] { return isOnScreen(here) && !isOnScreen(there); }));
  EXPECT_TRUE(info(there).has_value()) << "the whole list has them all";
  driver->showDesktop(2);
  EXPECT_TRUE(driver->until([&] { return !isOnScreen(here) && isOnScreen(there); }));
}

TEST_P(Contract, TheFrontWindowOfAProcessIsTheFirstOneOnScreen) {
  start();
  const auto front = driver->open(titled("in front"));
  driver->open(titled("of another process", 0, 5002));
  driver->focus(front);
  const auto found = [&] {
    const auto window = platform().windowList().frontWindow(5001);
    return window ? window->number : std::nullopt;
  };
  EXPECT_TRUE(driver->until([&] { return found() == front; }));
  server().moveWindowsToManagedSpace(std::vector{front}, spaces()[1]);
  EXPECT_TRUE(driver->until([&] { return !found(); })) << "it is on another desktop";
}

TEST_P(Contract, AStickyWindowIsOnEverySpace) {
  start();
  const auto window = driver->open(titled("sticky"));
  driver->makeSticky(window);
  const auto all = spaces();
  EXPECT_TRUE(driver->until([&] { return spacesOf(window).size() == all.size(); }));
  EXPECT_THAT(spacesOf(window), testing::UnorderedElementsAreArray(all));
  driver->settle();
  for (const auto space : all) EXPECT_THAT(windowsOn(space), Contains(window));
  EXPECT_TRUE(isOnScreen(window));
  driver->showDesktop(3);
  EXPECT_TRUE(driver->until([&] { return current() == all[3] && isOnScreen(window); }));
}

TEST_P(Contract, AFullScreenWindowIsListedAsOne) {
  start();
  const auto window = driver->open(titled("film"));
  const auto other = driver->open(titled("other"));
  EXPECT_EQ(info(window)->fullScreen, false);
  driver->setFullScreen(window, true);
  EXPECT_EQ(info(window)->fullScreen, true);
  EXPECT_EQ(info(other)->fullScreen, false);
  driver->showDesktop(1);
  EXPECT_EQ(info(window)->fullScreen, true) << "also while nobody sees it";
  driver->showDesktop(0);
  driver->setFullScreen(window, false);
  EXPECT_EQ(info(window)->fullScreen, false);
}

TEST_P(Contract, OwnWindowsAreListedUnderOurPid) {
  start();
  const auto own = driver->open(titled("ours", 0, platform().processID()));
  const auto other = driver->open(titled("theirs"));
  driver->settle();
  ASSERT_TRUE(info(own) && info(other));
  EXPECT_EQ(info(own)->ownerPid, platform().processID());
  EXPECT_NE(info(other)->ownerPid, platform().processID());
}

TEST_P(Contract, SpacesOfSeveralWindowsAreTheirUnion) {
  start();
  const auto first = driver->open(titled("first"));
  const auto third = driver->open(titled("third", 2));
  const auto all = spaces();
  EXPECT_THAT(*server().copySpacesForWindows(7, std::vector{third, first, third}),
              UnorderedElementsAre(all[0], all[2]));
  EXPECT_THAT(*server().copySpacesForWindows(7, std::vector<WindowID>{}), IsEmpty());
  EXPECT_THAT(*server().copySpacesForWindows(7, std::vector<WindowID>{0, 0x7FFFFFF0, first}), ElementsAre(all[0]));
}

TEST_P(Contract, EveryWayToMoveAWindowMovesIt) {
  start();
  const auto window = driver->open(titled("moved"));
  const auto stays = driver->open(titled("stays"));
  const auto all = spaces();
  const std::vector moved{window};
  struct Way {
    const char* name;
    std::function<void()> move;
    SpaceID target;
  };
  const std::vector<Way> ways{
      {"bridged",
       [&] {
         EXPECT_TRUE(server().performBridged(MoveWindowsToSpace{moved, all[1]}));
       },
       all[1]},
      {"managed space", [&] { server().moveWindowsToManagedSpace(moved, all[2]); }, all[2]},
      {"compatibility id",
       [&] {
         EXPECT_EQ(server().spaceSetCompatID(all[3], 0x79616265), 0);
         EXPECT_EQ(server().setWindowListWorkspace(moved, 0x79616265), 0);
         EXPECT_EQ(server().spaceSetCompatID(all[3], 0), 0);
         EXPECT_NE(server().setWindowListWorkspace(std::vector{stays}, 0x79616265), 0) << "the id is cleared";
       },
       all[3]},
      {"add and remove",
       [&] {
         const auto before = spacesOf(window);
         server().addWindowsToSpaces(moved, std::vector{all[1]});
         server().removeWindowsFromSpaces(moved, before);
       },
       all[1]},
      {"to where it is",
       [&] {
         EXPECT_TRUE(server().performBridged(MoveWindowsToSpace{moved, all[1]}));
       },
       all[1]},
      {"back to what is shown", [&] { server().moveWindowsToManagedSpace(moved, all[0]); }, all[0]},
  };
  Listener announced(server().windowsChanged);
  for (const auto& way : ways) {
    const bool stayed = spacesOf(window) == std::vector{way.target};
    driver->settle();
    announced.heard();
    way.move();
    EXPECT_TRUE(driver->until([&] { return spacesOf(window) == std::vector{way.target}; })) << way.name;
    EXPECT_TRUE(stayed || driver->until([&] { return announced.hears(); })) << way.name;
    EXPECT_THAT(windowsOn(way.target), Contains(window)) << way.name;
    driver->settle();
    EXPECT_EQ(isOnScreen(window), way.target == all[0]) << way.name;
    EXPECT_EQ(current(), all[0]) << way.name << ": the user stays";
  }
  EXPECT_EQ(spacesOf(stays), std::vector{all[0]});
}

TEST_P(Contract, AMovedWindowLeavesAllOtherSpacesWhenItWasSticky) {
  start();
  const auto window = driver->open(titled("sticky"));
  driver->makeSticky(window);
  const auto all = spaces();
  ASSERT_TRUE(driver->until([&] { return spacesOf(window).size() == all.size(); }));
  server().moveWindowsToManagedSpace(std::vector{window}, all[2]);
  EXPECT_TRUE(driver->until([&] { return spacesOf(window) == std::vector{all[2]}; }));
}

TEST_P(Contract, WindowsThatAreGoneDoNoHarm) {
  start();
  const auto gone = driver->open(titled("gone"));
  const auto stays = driver->open(titled("stays"));
  driver->close(gone);
  const auto all = spaces();
  const std::vector both{gone, stays};
  server().moveWindowsToManagedSpace(std::vector{gone}, all[3]);
  EXPECT_TRUE(server().performBridged(MoveWindowsToSpace{both, all[1]})) << "the others move all the same";
  EXPECT_TRUE(driver->until([&] { return spacesOf(stays) == std::vector{all[1]}; }));
  EXPECT_THAT(spacesOf(gone), IsEmpty());
  server().addWindowsToSpaces(both, std::vector{all[2]});
  server().removeWindowsFromSpaces(both, std::vector{all[1]});
  EXPECT_TRUE(driver->until([&] { return spacesOf(stays) == std::vector{all[2]}; }));
}

TEST_P(Contract, AReadScopeHoldsOneMomentTogether) {
  start();
  const auto window = driver->open(titled("read"));
  const auto all = spaces();
  driver->settle();
  {
    const auto outer = server().beginRead();
    const auto inner = server().beginRead();
    const auto listed = windowsOn(all[0]);
    EXPECT_THAT(listed, Contains(window));
    EXPECT_TRUE(info(window).has_value());
    driver->close(window);
    EXPECT_EQ(windowsOn(all[0]), listed) << "what was read stays";
    EXPECT_TRUE(info(window).has_value());
  }
  EXPECT_TRUE(driver->until([&] { return !info(window); }));
  EXPECT_THAT(windowsOn(all[0]), Not(Contains(window)));
}

}  // namespace tessaspaces::contract
