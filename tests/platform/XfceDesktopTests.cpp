#include <gmock/gmock.h>

#include "platform/x11/XfceDesktop.h"

namespace tessaspaces {
namespace {

constexpr std::string_view head = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- written <by> the settings service -->
<channel name="xfce4-desktop" version="1.0">
  <property name="backdrop" type="empty">
)";
constexpr std::string_view monitors = R"(
    <property name="screen0" type="empty">
      <property name="monitorDP-1" type="empty">
        <property name="workspace0" type="empty">
          <property name="color-style" type="int" value="2"/>
          <property name="image-style" type="int" value="4"/>
          <property name="last-image" type="string" value="/home/me/Tom &amp; &quot;Kit&quot;.jpg"/>
          <property name="rgba1" type="array">
            <value type="double" value="0.000000"/><value type="double" value="0.500000"/>
            <value type="double" value="1.000000"/><value type="double" value="1.000000"/>
          </property>
          <property name="rgba2" type="array">
            <value type="double" value="1,0"/><value type="double" value="0,2"/><value type="double" value="0"/>
          </property>
        </property>
        <property name="workspace1" type="empty">
          <property name="image-style" type="int" value="0"/>
          <property name="last-image" type="string" value="/unused.png"/>
        </property>
        <property name="workspace2" type="empty">
          <property name="image-style" type="int" value="99"/>
          <property name="last-image" type="string" value="relative.png"/>
          <property name="rgba1" type="array"><value type="double" value="7"/></property>
        </property>
      </property>
    </property>
  </property>
</channel>
)";
constexpr std::string_view eachItsOwn = R"(<property name="single-workspace-mode" type="bool" value="false"/>)";

XfceBackdrops with(std::string_view mode) {
  return XfceBackdrops::parse(std::string(head) + std::string(mode) + std::string(monitors));
}

TEST(XfceBackdrops, TellWhatTheUserChoseForADesktop) {
  const auto backdrops = with(eachItsOwn);
  EXPECT_EQ(backdrops.wallpaper("DP-1", 0), (WallpaperFile{"/home/me/Tom & \"Kit\".jpg", WallpaperFit::scaled,
                                                           WallpaperColors::topToBottom, 0xFF0080FF, 0xFFFF3300}));
  EXPECT_EQ(backdrops.wallpaper("DP-1", 1), (WallpaperFile{.path = "", .fit = WallpaperFit::none})) << "colours alone";
  EXPECT_EQ(backdrops.wallpaper("DP-1", 2), WallpaperFile{}) << "nonsense counts as unset";
  EXPECT_EQ(backdrops.wallpaper("DP-1", 3), std::nullopt);
  EXPECT_EQ(backdrops.wallpaper("DP-2", 0), std::nullopt);
}

TEST(XfceBackdrops, OneDesktopsWallpaperIsOnAllUnlessTheUserWantsEachItsOwn) {
  const auto first = with(eachItsOwn).wallpaper("DP-1", 0);
  EXPECT_EQ(with("").wallpaper("DP-1", 3), first);
  const auto second = with(R"(<property name="single-workspace-number" type="int" value="1"/>)");
  EXPECT_EQ(second.wallpaper("DP-1", 0), with(eachItsOwn).wallpaper("DP-1", 1));
}

TEST(XfceBackdrops, AFileThatIsNoneSaysNothing) {
  std::string deep;
  for (int i = 0; i < 1000; ++i) deep += "<property name=\"a\">";
  const std::string whole = std::string(head) + std::string(monitors);
  for (const auto& text : {std::string(), std::string("<"), deep, whole.substr(0, head.size() + 80)}) {
    EXPECT_EQ(XfceBackdrops::parse(text).wallpaper("DP-1", 0), std::nullopt);
  }
}

}  // namespace
}  // namespace tessaspaces
