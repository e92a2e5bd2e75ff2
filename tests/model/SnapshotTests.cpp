#include <gmock/gmock.h>

#include <algorithm>

#include "model/AppAssignments.h"
#include "model/DisplayScreens.h"
#include "model/Snapshot.h"
#include "settings/Settings.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Snapshot : public CoreTest {
 protected:
  static std::vector<std::string> names(const SpacesSnapshot& snapshot) {
    std::vector<std::string> names;
    for (const auto& desktop : snapshot.desktops) names.push_back(desktop->name + (desktop->isCurrent ? "*" : ""));
    return names;
  }
  static std::vector<std::string> titles(const DesktopInfo& desktop) {
    std::vector<std::string> titles;
    for (const auto& window : desktop.windows) titles.push_back(window.title);
    return titles;
  }
  static ManagedSpace& reported(WorldState& state, std::string_view name) {
    auto& spaces = state.displays[0].spaces;
    return std::find_if(spaces.begin(), spaces.end(), [&](const auto& space) { return space.reported.name == name; })
        ->reported;
  }
};

TEST_F(Snapshot, ListsUserDesktopsOfAllDisplaysInOrder) {
  start("left 960x1080 | A B* Movie! C ; right 960x1080 | X* Y");
  const auto snapshot = Spaces::enumerate();
  EXPECT_THAT(names(snapshot), ElementsAre("A", "B*", "C", "X*", "Y"));
  EXPECT_EQ(snapshot.desktops[3]->screen->name, "right");
  EXPECT_EQ(Spaces::currentDesktopIndex(snapshot, "right"), 3);
  EXPECT_EQ(Spaces::allSpaceIDs("left").size(), 4u) << "full-screen spaces count here";
  EXPECT_THAT(Spaces::allSpaceIDs("elsewhere"), IsEmpty());
}

TEST_F(Snapshot, TakesSpacesAsTheyAreDescribed) {
  start("left 960x1080 | A B* C D");
  world().edit([&](WorldState& state) {
    auto& old = reported(state, "A");
    old.managedSpaceID = std::exchange(old.id64, std::nullopt);
    old.uuid.reset();
    auto& unknown = reported(state, "C");  // an id under neither key
    unknown.id64.reset();
    unknown.managedSpaceID.reset();
    reported(state, "D").type.reset();  // no type counts as ordinary
  });
  const auto snapshot = Spaces::enumerate();
  EXPECT_THAT(names(snapshot), ElementsAre("A", "B*", "D"));
  EXPECT_EQ(snapshot.desktops[0]->nicknameKey(), "space-id-" + std::to_string(world().spaceNamed("A")));
  EXPECT_EQ(snapshot.desktops[1]->nicknameKey(), snapshot.desktops[1]->spaceUUID);

  world().edit([](WorldState& state) { state.displays[0].reportsCurrentSpace = false; });
  EXPECT_EQ(Spaces::firstCurrentIndex(Spaces::enumerate()), std::nullopt);
  world().edit([](WorldState& state) { state.displays[0].reportsSpaces = false; });
  EXPECT_THAT(Spaces::enumerate().desktops, IsEmpty());
  world().editFaults([](SimulatedFaults& faults) { faults.unanswered.insert(Operation::copyManagedDisplaySpaces); });
  EXPECT_THAT(Spaces::enumerate().desktops, IsEmpty());
}

TEST_F(Snapshot, RemembersWhichDesktopAFullScreenSpaceCovers) {
  start("left 960x1080 | A B* Movie! ; right 960x1080 | X*");
  world().addApplication({7, "Player", "player"});
  EXPECT_FALSE(Spaces::isCurrentSpaceRestricted(platform().screens().mainScreen()));
  (void)Spaces::enumerate();
  world().showSpace(world().spaceNamed("Movie"));
  world().setFrontmost(7);
  const auto covered = Spaces::enumerate();
  EXPECT_THAT(names(covered), ElementsAre("A", "B", "X*"));
  EXPECT_EQ(covered.desktops[1]->frontmostFullscreenAppName, "Player");
  EXPECT_EQ(covered.desktops[0]->frontmostFullscreenAppName, std::nullopt);
  EXPECT_EQ(Spaces::currentDesktopIndex(covered, "left"), 2) << "else the first that is marked current";
  EXPECT_TRUE(Spaces::isCurrentSpaceRestricted(platform().screens().mainScreen()));
  EXPECT_FALSE(Spaces::isCurrentSpaceRestricted(nullptr));
}

TEST_F(Snapshot, LabelsPreferTheNickname) {
  start("left 960x1080 | Mail* -");
  const auto snapshot = Spaces::enumerate();
  EXPECT_EQ(snapshot.desktops[0]->label(0), "Mail");
  EXPECT_THAT(snapshot.desktops[1]->label(2), testing::HasSubstr("3"));
  Settings::setDesktopNickname("Post", snapshot.desktops[0]->nicknameKey());
  EXPECT_EQ(snapshot.desktops[0]->label(0), "Post");
}

TEST_F(Snapshot, KeepsOnlyOrdinaryWindowsOfOthers) {
  start("left 960x1080 | A* [Front Back] B [Other]");
  const SpaceID a = world().spaceNamed("A");
  world().addWindow({"Panel", SimulatedPlatform::ownPid, a});
  world().addWindow({"Dock", 50, a, {0, 0, 960, 30}, 20});
  const WindowID unlayered = world().addWindow({"Unlayered", 51, a});
  const WindowID ghost = world().addWindow({"Ghost", 52, a});
  world().addWindow({"Everywhere", 53, a, {1, 2, 3, 4}, 0, true});
  world().edit([&](WorldState& state) {
    state.window(unlayered)->reported.layer.reset();
    state.window(ghost)->reported.number.reset();  // on the space, but not in the window list
  });
  const auto snapshot = Spaces::enumerate();
  EXPECT_THAT(titles(*snapshot.desktops[0]), ElementsAre("Everywhere", "Front", "Back"));
  EXPECT_THAT(titles(*snapshot.desktops[1]), ElementsAre("Everywhere", "Other"));
  EXPECT_EQ(snapshot.desktops[0]->windows[0].bounds, (Rect{1, 2, 3, 4}));
  for (const auto& desktop : snapshot.desktops) {
    EXPECT_EQ(desktop->thumbs.size(), desktop->windows.size());
    EXPECT_EQ(desktop->icons.size(), desktop->windows.size());
  }
  EXPECT_THAT(titles(*Spaces::enumerate(Spaces::WithWindows::no).desktops[0]), IsEmpty());
}

TEST_F(Snapshot, CachesPreviewsAndIconsWhileTheirWindowsLive) {
  start("left 960x1080 | A* [Front Back]");
  const auto picture = std::make_shared<const Image>(Image{1, 1, {0xff112233}});
  const auto before = Spaces::enumerate();
  const auto front = before.desktops[0]->windows[0];
  world().addApplication({front.pid, "Front", std::nullopt}, picture);
  sim->time().advance(std::chrono::minutes(1));
  Spaces::cacheThumbnail(front.id, picture);
  const auto with = Spaces::enumerate();
  for (const auto* images : {&with.desktops[0]->thumbs, &with.desktops[0]->icons}) {
    ASSERT_EQ(images->size(), 2u);
    EXPECT_EQ((*images)[0].get(), picture.get());
    EXPECT_EQ((*images)[1].get(), nullptr);
  }

  world().clearCalls();
  EXPECT_EQ(Spaces::enumerate().desktops[0]->icons[0].get(), picture.get());
  EXPECT_FALSE(world().asked(Operation::icon)) << "neither the known icon nor the missing one is asked for again";
  sim->time().advance(std::chrono::minutes(1));
  (void)Spaces::enumerate();
  EXPECT_EQ(world().calls(Operation::icon).size(), 1u) << "the missing one may be there after a while";

  world().removeWindow(front.id);
  (void)Spaces::enumerate();
  // The number comes back for another window: the old preview must not.
  world().edit([&](WorldState& state) {
    SimulatedWindow reborn = state.windows[0];
    reborn.id = front.id;
    reborn.reported.number = front.id;
    state.windows.push_back(reborn);
  });
  const auto after = Spaces::enumerate();
  ASSERT_EQ(after.desktops[0]->thumbs.size(), 2u);
  for (const auto& thumb : after.desktops[0]->thumbs) EXPECT_EQ(thumb.get(), nullptr);
}

TEST_F(Snapshot, TheFocusedWindowIsTheFrontmostApplicationsFirst) {
  start("left 960x1080 | A* [Front Back] B [Hidden]");
  EXPECT_EQ(Spaces::focusedWindow(), std::nullopt);
  const auto windows = Spaces::enumerate().desktops[0]->windows;
  world().focusWindow(windows[1].id);
  EXPECT_EQ(Spaces::focusedWindow()->title, "Back");
  world().edit([&](WorldState& state) { state.window(windows[1].id)->reported.name.reset(); });
  EXPECT_EQ(Spaces::focusedWindow()->title, "");
  world().edit([&](WorldState& state) { state.window(windows[1].id)->reported.bounds->width.reset(); });
  EXPECT_EQ(Spaces::focusedWindow()->bounds.width, 0);
  world().edit([&](WorldState& state) { state.window(windows[1].id)->reported.bounds.reset(); });
  EXPECT_EQ(Spaces::focusedWindow(), std::nullopt);
}

TEST_F(Snapshot, ScreensOfOneMirrorSetStandForOneDisplay) {
  start("beamer 1920x1080 | A* ; laptop 1920x1080+0 builtin | B* ; desk 1280x1024+1920 | C*");
  auto screens = [&] { return platform().screens().screens(); };
  auto distinct = [] {
    std::vector<std::string> names;
    for (const auto& screen : Spaces::distinctScreens()) names.push_back(screen->name);
    return names;
  };
  EXPECT_THAT(distinct(), ElementsAre("beamer", "laptop", "desk"));
  world().mirrorDisplay("laptop", "beamer");
  EXPECT_THAT(distinct(), ElementsAre("laptop", "desk"));
  world().setPointer({10, 10});
  EXPECT_EQ(Spaces::screenWithCursor()->name, "laptop") << "the built-in panel wins";
  world().mirrorDisplay("laptop", "");
  world().mirrorDisplay("desk", "beamer");
  EXPECT_EQ(Spaces::canonicalScreen(screens()[2])->name, "desk") << "between external ones the caller's stays";
  EXPECT_EQ(Spaces::canonicalScreen(nullptr), nullptr);

  world().setPointer({1e6, 1e6});
  EXPECT_EQ(Spaces::screenWithCursor()->name, Spaces::canonicalScreen(platform().screens().mainScreen())->name);
  EXPECT_EQ(Spaces::screenForDisplayUUID("nowhere")->name, "beamer");
  EXPECT_EQ(Spaces::screenForDisplayUUID("desk")->name, "desk");
}

TEST_F(Snapshot, ApplicationsFindTheirDesktop) {
  start("left 960x1080 | A* B");
  const auto desktops = Spaces::enumerate().desktops;
  EXPECT_EQ(Settings::resolve(DesktopIdentifier{desktops[1]->nicknameKey()}, desktops), desktops[1]);
  EXPECT_EQ(Settings::resolve(DesktopIdentifier{"gone"}, desktops), nullptr);
  EXPECT_EQ(Settings::resolve(DesktopNumber{2}, desktops), desktops[1]);
  EXPECT_EQ(Settings::resolve(DesktopNumber{0}, desktops), nullptr);
  EXPECT_EQ(Settings::resolve(DesktopNumber{3}, desktops), nullptr);
}

}  // namespace
}  // namespace tessaspaces
