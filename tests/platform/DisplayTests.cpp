#include <gmock/gmock.h>

#include <set>

#include "platform/x11/DesktopMap.h"
#include "platform/x11/DisplayIdentity.h"
#include "platform/x11/Monitors.h"
#include "platform/x11/WorkArea.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;

std::vector<std::uint8_t> edidOf(std::uint8_t serial) {
  std::vector<std::uint8_t> edid(128, 0);
  std::fill(edid.begin() + 1, edid.begin() + 7, 0xff);
  edid[12] = serial;
  return edid;
}

TEST(DisplayIdentity, FollowsTheMonitorAndTellsTwinsApart) {
  const MonitorIdentity laptop{"eDP-1", edidOf(1)};
  const MonitorIdentity desk{"DP-1", edidOf(2)};
  const auto both = identify(std::vector{laptop, desk});
  EXPECT_EQ(identify(std::vector{desk, laptop})[0], both[1]) << "the order does not matter";
  EXPECT_EQ(identify(std::vector{desk})[0], both[1]) << "nor do the others";
  EXPECT_EQ(identify(std::vector{MonitorIdentity{"DP-2", desk.edid}})[0].uuid, both[1].uuid) << "nor the socket";
  EXPECT_TRUE(isPlausibleEdid(desk.edid));
  EXPECT_FALSE(isPlausibleEdid(std::vector<std::uint8_t>(128, 0)));

  // Monitors of one batch without serial numbers, and monitors that are only a name.
  const auto twins =
      identify(std::vector<MonitorIdentity>{{"DP-1", edidOf(0)}, {"DP-2", edidOf(0)}, {"left", {}}, {"right", {}}});
  std::set<std::string> texts;
  std::set<DisplayID> numbers;
  for (const auto& identity : twins) {
    texts.insert(identity.uuid);
    numbers.insert(identity.number);
    EXPECT_THAT(identity.uuid, testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-5[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                                                     "[0-9A-F]{12}"));
  }
  EXPECT_EQ(texts.size(), twins.size());
  EXPECT_EQ(numbers.size(), twins.size());
  EXPECT_FALSE(numbers.contains(0));
}

TEST(Monitors, BecomeScreensWithTheOriginAtTheBottom) {
  const std::vector<Monitor> monitors{
      {"eDP-1", "eDP-1", {}, {1000, 0, 1600, 1000}, {1000, 30, 1600, 970}, true},
      {"HDMI-1", "HDMI-1", {}, {1000, 0, 1600, 1000}, {1000, 30, 1600, 970}, false},
      {"DP-1", "DP-1", {}, {0, -200, 1000, 1400}, {0, -200, 1000, 1400}, false},
  };
  const auto screens = toScreens(monitors, 1.5);
  ASSERT_EQ(screens.size(), 3U);
  EXPECT_EQ(screens[0].frame, (Rect{1000, 0, 1600, 1000}));
  EXPECT_EQ(screens[0].visibleFrame, (Rect{1000, 0, 1600, 970})) << "a panel at the top";
  EXPECT_EQ(screens[2].frame, (Rect{0, -200, 1000, 1400}));
  EXPECT_TRUE(screens[0].builtIn);
  EXPECT_FALSE(screens[1].builtIn);
  EXPECT_TRUE(screens[0].inMirrorSet && screens[1].inMirrorSet && !screens[2].inMirrorSet);
  EXPECT_EQ(screens[0].mirrors, 0U);
  EXPECT_EQ(screens[1].mirrors, screens[0].displayID);
}

TEST(Monitors, ScaleComesFromTheResources) {
  EXPECT_EQ(scaleFromResources("Xft.antialias:\t1\nXft.dpi:\t192\n"), 2);
  EXPECT_EQ(scaleFromResources("Xft.dpi: 144"), 1.5);
  for (const auto* none : {"", "Xft.dpi:", "Xft.dpi: many", "Xft.dpi: 72", "Xft.dpiX: 192", "Xft.dpi: 99999"}) {
    EXPECT_EQ(scaleFromResources(none), 1) << none;
  }
}

TEST(WorkArea, StrutsReserveOnlyWhatTheyTouch) {
  using Edge = Strut::Edge;
  const PixelRect root{0, 0, 1920, 1200};
  const PixelRect left{0, 0, 960, 1080};
  const PixelRect right{960, 0, 960, 1200};
  const std::vector<Strut> bars{{Edge::top, 30, 0, 959}, {Edge::bottom, 40, 960, 1919}};
  EXPECT_EQ(withoutStruts(left, root, bars), (PixelRect{0, 30, 960, 1050}));
  EXPECT_EQ(withoutStruts(right, root, bars), (PixelRect{960, 0, 960, 1160}));
  // A bar at the bottom of the shorter monitor reaches down to the root's edge in the protocol's count.
  EXPECT_EQ(withoutStruts(left, root, {{Edge::bottom, 150, 0, 959}}), (PixelRect{0, 0, 960, 1050}));
  // A bar between the monitors would by that count cover the whole left one.
  EXPECT_EQ(withoutStruts(left, root, {{Edge::left, 1000, 0, 1199}}), left);
}

TEST(WorkArea, StrutsBeyondAllMeasureReserveNothing) {
  const PixelRect root{0, 0, 1920, 1200};
  const auto rest = [&](std::vector<std::uint32_t> values) {
    std::vector<Strut> struts;
    addStruts(values, root, struts);
    return withoutStruts(root, root, struts);
  };
  EXPECT_EQ(rest({0, 0, 30, 0}), (PixelRect{0, 30, 1920, 1170})) << "along the whole edge";
  EXPECT_EQ(rest({0, 0, 30, 0, 0, 0, 0, 0, 0, 0xffffffff, 0, 0}), (PixelRect{0, 30, 1920, 1170}));
  for (const std::uint32_t depth : {0x7fffffffU, 0x80000000U, 0xffffffffU}) {
    EXPECT_EQ(rest({depth, depth, depth, depth}), root) << depth;
    EXPECT_EQ(rest({0, 0, 30, 0, 0, 0, 0, 0, depth, depth, 0, 0}), root) << depth;
  }
  EXPECT_EQ(rest({30, 30, 30}), root) << "half a property";
}

const std::vector<MonitorArea> monitors{{"left", {0, 0, 960, 1080}}, {"right", {960, 0, 960, 1080}}};

TEST(DesktopMap, DesktopsBelongToMonitorsOnlyWhenAllOriginsSaySo) {
  struct Case {
    const char* what;
    std::vector<DesktopOrigin> origins;
    bool perMonitor;
  };
  const std::vector<Case> cases{
      {"a workspace each", {{0, 0}, {960, 0}}, true},
      {"all zeros", {{0, 0}, {0, 0}, {0, 0}}, false},
      {"no property", {}, false},
      {"one large desktop scrolled about", {{960, 540}}, false},
      {"an origin that is no monitor's", {{0, 0}, {960, 0}, {480, 0}}, false},
  };
  for (const auto& [what, origins, perMonitor] : cases) {
    EXPECT_EQ(mapDesktops(monitors, origins, 3).perMonitor, perMonitor) << what;
  }
  EXPECT_FALSE(mapDesktops(std::vector{monitors[0]}, std::vector<DesktopOrigin>{{0, 0}, {960, 0}}, 2).perMonitor);

  const auto map = mapDesktops(monitors, std::vector<DesktopOrigin>{{960, 0}, {0, 0}, {960, 0}}, 3);
  EXPECT_THAT(map.desktopsOf(0, 3), ElementsAre(1));
  EXPECT_THAT(map.desktopsOf(1, 3), ElementsAre(0, 2));
  EXPECT_THAT(DesktopMap().desktopsOf(1, 2), ElementsAre(0, 1)) << "shared desktops are on every monitor";
}

TEST(VisibleDesktops, OtherMonitorsShowWhatCanBeSeenElseWhatWasLastThere) {
  RootState root;
  root.desktopCount = 4;
  root.names = {"a", "b", "c", "d"};
  const auto map = mapDesktops(monitors, std::vector<DesktopOrigin>{{0, 0}, {0, 0}, {960, 0}, {960, 0}}, 4);
  VisibleDesktops visible;
  const auto right = [&](std::vector<DesktopWindow> windows) {
    return visible.current(monitors, map, root, 1, windows);
  };

  root.current = 1;
  EXPECT_EQ(visible.current(monitors, map, root, 0, {}), 1U) << "the focused monitor";
  EXPECT_FALSE(VisibleDesktops::needsWindows(map, root, 0));
  ASSERT_TRUE(VisibleDesktops::needsWindows(map, root, 1));
  EXPECT_EQ(right({{2, false}, {3, true}}), 3U) << "a viewable window, nothing known from before";
  EXPECT_EQ(right({{2, false}}), 3U) << "an empty desktop rather than one whose windows are hidden";

  root.current = 3;
  visible.note(monitors, map, root);
  root.current = 0;
  EXPECT_EQ(right({}), 3U) << "remembered";
  EXPECT_EQ(right({{2, true}}), 2U) << "what is seen outweighs it";

  // The desktop "a" went: the numbers shift, the name stays.
  root.desktopCount = 3;
  root.names = {"b", "c", "d"};
  const auto shifted = mapDesktops(monitors, std::vector<DesktopOrigin>{{0, 0}, {960, 0}, {960, 0}}, 3);
  EXPECT_EQ(visible.current(monitors, shifted, root, 1, {}), 2U);
}

}  // namespace
}  // namespace tessaspaces
