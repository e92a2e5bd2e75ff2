#include <gmock/gmock.h>

#include <QImage>
#include <fstream>

#include "support/CoreTest.h"
#include "ui/wallpapers/DesktopBackgrounds.h"

namespace tessaspaces {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::HasSubstr;

constexpr std::uint32_t red = 0xFFFF0000;
constexpr std::uint32_t green = 0xFF00FF00;
constexpr ImageSize tile{96, 54};

ImageRef plain(std::uint32_t color, int width = 192, int height = 108) {
  const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  return std::make_shared<Image>(Image{width, height, std::vector<std::uint32_t>(count, color)});
}

class BackgroundTest : public CoreTest {
 protected:
  void begin(std::string_view text = "main 1920x1080 | A* B C") {
    start(text);
    sim->windowCapture().begin();
    cacheFolder = folder / "cache";
    make();
  }
  void make() {
    backgrounds = std::make_unique<DesktopBackgrounds>(cacheFolder);
    heard = backgrounds->changed.connect([this] { ++changes; });
    settle();
  }
  void settle() { sim->time().runUntilIdle(); }
  TileBackground at(SpaceID space, const char* display = "main", ImageSize pixels = tile) {
    return backgrounds->background(display, space, pixels);
  }
  /// What is there once everything is ready.
  TileBackground ready(SpaceID space, const char* display = "main", ImageSize pixels = tile) {
    at(space, display, pixels);
    settle();
    at(space, display, pixels);
    settle();
    const auto found = at(space, display, pixels);
    if (found.image) {
      EXPECT_EQ(ImageSize(found.image->width, found.image->height), pixels);
    }
    return found;
  }
  void show(SpaceID space, std::uint32_t color) {
    world().showSpace(space);
    sim->pictures().setScreenContent("main", plain(color));
    settle();
  }
  std::string picture(const char* name, std::uint32_t color) {
    QImage image(192, 108, QImage::Format_RGB32);
    image.fill(color);
    const auto path = (folder / name).string();
    EXPECT_TRUE(image.save(QString::fromStdString(path)));
    return path;
  }
  std::vector<fs::path> cached() {
    std::vector<fs::path> pictures;
    for (const auto& each : fs::directory_iterator(cacheFolder)) {
      if (each.path().extension() == ".png") pictures.push_back(each.path());
    }
    return pictures;
  }

  fs::path cacheFolder;
  std::unique_ptr<DesktopBackgrounds> backgrounds;
  ScopedConnection heard;
  int changes = 0;
};

TEST_F(BackgroundTest, WithoutAnythingToSeeEachDesktopHasAColor) {
  begin();
  std::set<std::uint32_t> colors;
  for (const SpaceID space : {1, 2, 3}) {
    const auto found = ready(space);
    EXPECT_FALSE(found.image);
    EXPECT_EQ(found.color >> 24U, 0xFFU);
    colors.insert(found.color);
  }
  EXPECT_EQ(colors.size(), 3U);
  EXPECT_FALSE(ready(77).image) << "no such desktop";
  EXPECT_FALSE(ready(1, "elsewhere").image);
}

TEST_F(BackgroundTest, AFileIsReadWithoutWaitingForIt) {
  begin();
  sim->pictures().setWallpaper("main", 2, WallpaperFile{picture("red.png", red)});
  EXPECT_FALSE(at(2).image) << "not yet";
  changes = 0;
  settle();
  EXPECT_GT(changes, 0);
  EXPECT_EQ(ready(2).color, red);
  EXPECT_EQ(at(2).image, at(2).image) << "kept";

  // While another size is being made, the one at hand serves.
  const auto before = at(2).image;
  EXPECT_EQ(at(2, "main", {200, 100}).image, before);
  EXPECT_EQ(ready(2, "main", {200, 100}).color, red);

  picture("red.png", green);
  fs::last_write_time(folder / "red.png", fs::file_time_type::clock::now() + 10s);
  EXPECT_EQ(ready(2, "main", {200, 100}).color, red);
  backgrounds->refresh();
  EXPECT_EQ(ready(2).color, green) << "the file has changed";

  sim->pictures().setWallpaper("main", 2, WallpaperFile{picture("other.png", red)});
  settle();
  EXPECT_EQ(ready(2).color, red) << "the user has chosen another";
}

TEST_F(BackgroundTest, AFileThatCannotBeReadIsToldOfOnce) {
  begin();
  const auto path = (folder / "missing.png").string();
  sim->pictures().setWallpaper("main", 0, WallpaperFile{path});
  takeLog();
  for (const SpaceID space : {1, 2, 3, 1}) EXPECT_FALSE(ready(space).image);
  backgrounds->refresh();
  ready(1);
  const auto log = takeLog();
  EXPECT_EQ(std::count_if(log.begin(), log.end(), [](const auto& line) { return line.find("WALLPAPER") != line.npos; }),
            1);
  EXPECT_THAT(log, Contains(HasSubstr("missing.png cannot be shown: there is no such file")));

  show(1, green);
  backgrounds->learn("main", 1);
  settle();
  EXPECT_EQ(ready(1).color, green) << "what is seen of the desktop";
  picture("missing.png", red);
  backgrounds->refresh();
  EXPECT_EQ(ready(1).color, red) << "there after all";

  WallpaperFile colored{(folder / "gone.png").string()};
  colored.firstColor = green;
  sim->pictures().setWallpaper("main", 2, colored);
  settle();
  EXPECT_EQ(ready(2).color, green) << "the colours that the user has chosen";
}

TEST_F(BackgroundTest, WhatIsPaintedIsShownOnEachMonitorsDesktops) {
  begin("left 960x1080 | A* B ; right 1920x1080 | X*");
  sim->pictures().setWallpaper("left", 0, PaintedWallpaper{plain(red, 960, 1080)});
  sim->pictures().setWallpaper("right", 0, PaintedWallpaper{plain(green, 1920, 1080)});
  EXPECT_EQ(ready(1, "left").color, red);
  EXPECT_EQ(ready(2, "left").image, ready(1, "left").image) << "one picture for all";
  EXPECT_EQ(ready(3, "right").color, green);
  // A larger tile gets a larger picture of it.
  world().clearCalls();
  ready(3, "right", {960, 540});
  EXPECT_THAT(world().calls(Operation::wallpaper), Contains("wallpaper(right, 3)"));
  world().clearCalls();
  ready(3, "right", {960, 540});
  EXPECT_TRUE(world().calls(Operation::wallpaper).empty()) << "known";
}

TEST_F(BackgroundTest, AskingOnceAheadIsEnough) {
  begin("left 960x540 | A* B ; right 960x540 | X*");
  sim->pictures().setWallpaper("left", 0, PaintedWallpaper{plain(red, 960, 540)});
  sim->pictures().setWallpaper("right", 3, WallpaperFile{.path = picture("green.png", green)});
  at(1, "left");
  at(3, "right");
  settle();
  // Nobody asks while the overview is closed; the first to do so again is its first frame.
  world().clearCalls();
  ASSERT_TRUE(at(1, "left").image);
  EXPECT_EQ(at(1, "left").color, red);
  ASSERT_TRUE(at(3, "right").image);
  EXPECT_EQ(at(3, "right").color, green);
  EXPECT_TRUE(world().calls().empty()) << "a look-up";

  sim->pictures().setWallpaper("left", 0, PaintedWallpaper{plain(green, 960, 540)});
  settle();
  EXPECT_EQ(at(1, "left").color, green) << "made when it changed, not when it is shown";

  // What was learned is there as well, also at the next start.
  show(2, red);
  sim->pictures().setWallpaper("left", 0, UnknownWallpaper{});
  sim->pictures().setScreenContent("left", plain(red, 960, 540));
  settle();
  at(2, "left");
  backgrounds->learn("left", 2);
  settle();
  ASSERT_TRUE(at(2, "left").image);
  make();
  at(2, "left");
  settle();
  ASSERT_TRUE(at(2, "left").image);
  EXPECT_EQ(at(2, "left").color, red);
}

TEST_F(BackgroundTest, AWallpaperThatNeverRestsIsFollowedWithRests) {
  begin();
  at(1);
  settle();
  world().clearCalls();
  for (int frame = 0; frame < 100; ++frame) {
    sim->pictures().setWallpaper("main", 0, PaintedWallpaper{plain(frame % 2 == 0 ? green : red)});
    sim->time().advance(10ms);
  }
  EXPECT_LE(world().calls(Operation::wallpaper).size(), 5U) << "one desktop, for one second";
  settle();
  EXPECT_EQ(at(1).color, red) << "the last one";
}

TEST_F(BackgroundTest, ADesktopIsLearnedFromWhatIsSeenOfIt) {
  begin();
  show(2, red);
  backgrounds->learn("main", 1);
  settle();
  EXPECT_FALSE(ready(1).image) << "it is not shown";
  ready(2);
  changes = 0;
  backgrounds->learn("main", 2);
  settle();
  EXPECT_GT(changes, 0);
  EXPECT_EQ(ready(2).color, red);
  EXPECT_EQ(cached().size(), 1U);

  show(2, green);
  backgrounds->learn("main", 2);
  EXPECT_EQ(ready(2).color, red) << "not again at once";
  sim->time().advance(DesktopBackgrounds::learnPause);
  // A window hides the left half by now.
  world().addWindow({.title = "half", .pid = 1, .space = 2, .bounds = {-100, -100, 1060, 1300}});
  settle();
  backgrounds->learn("main", 2);
  const auto mixed = ready(2).image;
  ASSERT_TRUE(mixed);
  EXPECT_EQ(mixed->pixels[20 * 96 + 10], red);
  EXPECT_EQ(mixed->pixels[20 * 96 + 90], green);

  sim->pictures().setWallpaper("main", 1, PaintedWallpaper{plain(green)});
  settle();
  EXPECT_FALSE(ready(2).image) << "which desktops have another wallpaper now nobody tells";
  EXPECT_TRUE(cached().empty());
}

TEST_F(BackgroundTest, MenusAndLockersAreNotLearned) {
  begin();
  show(1, red);
  sim->pictures().setUnlistedWindows({{0, 0, 1920, 1080}});
  backgrounds->learn("main", 1);
  settle();
  EXPECT_FALSE(ready(1).image) << "nothing of the desktop is seen";
  EXPECT_FALSE(fs::exists(cacheFolder) && !cached().empty());

  sim->time().advance(DesktopBackgrounds::learnPause);
  auto screen = std::make_shared<Image>(*plain(red));
  std::fill_n(screen->pixels.begin(), 192 * 30, green);  // a notification over the whole width
  sim->pictures().setScreenContent("main", screen);
  sim->pictures().setUnlistedWindows({{0, 0, 1920, 300}});
  backgrounds->learn("main", 1);
  const auto found = ready(1);
  ASSERT_TRUE(found.image);
  EXPECT_EQ(found.color, red);
  EXPECT_EQ(std::count(found.image->pixels.begin(), found.image->pixels.end(), red), std::ssize(found.image->pixels));
}

TEST_F(BackgroundTest, APictureOfTheOldWallpaperComesTooLate) {
  begin();
  show(1, red);
  ready(1);
  backgrounds->learn("main", 1);  // its work waits
  sim->windowCapture().wallpaperChanged.emit();
  settle();
  EXPECT_FALSE(ready(1).image);
  EXPECT_FALSE(fs::exists(cacheFolder) && !cached().empty());
  show(1, green);
  backgrounds->learn("main", 1);
  settle();
  EXPECT_EQ(ready(1).color, green) << "at once, and without the old one";

  // The same of what the last run has left, while that is being read.
  backgrounds = std::make_unique<DesktopBackgrounds>(cacheFolder);
  sim->windowCapture().wallpaperChanged.emit();
  settle();
  EXPECT_FALSE(ready(1).image);
  EXPECT_TRUE(cached().empty());
}

TEST_F(BackgroundTest, WhatWasLearnedIsThereInTheNextRun) {
  begin();
  for (const auto& [space, color] : {std::pair{SpaceID{1}, red}, std::pair{SpaceID{3}, green}}) {
    show(space, color);
    backgrounds->learn("main", space);
    settle();
  }
  ASSERT_EQ(cached().size(), 2U);
  make();
  EXPECT_EQ(ready(1).color, red);
  EXPECT_EQ(ready(3).color, green);
  EXPECT_FALSE(ready(2).image);

  // A picture that is lost or damaged leaves its colour.
  std::ofstream(cached()[0], std::ios::trunc) << "nonsense";
  fs::remove(cached()[1]);
  takeLog();
  make();
  for (const auto& [space, color] : {std::pair{SpaceID{1}, red}, std::pair{SpaceID{3}, green}}) {
    EXPECT_FALSE(ready(space).image);
    EXPECT_EQ(ready(space).color, color);
  }
  EXPECT_THAT(takeLog(), Contains(HasSubstr("is damaged, learning the desktop anew")));
  show(1, green);
  backgrounds->learn("main", 1);
  settle();
  make();
  EXPECT_EQ(ready(1).image->pixels.front(), green) << "replaced";
}

TEST_F(BackgroundTest, ADamagedIndexIsReplaced) {
  begin();
  fs::create_directories(cacheFolder);
  std::ofstream(cacheFolder / "notes.txt") << "the user's own";
  std::ofstream(cacheFolder / "desktop-0.png") << "left over";
  std::string nested = R"({"version": 1, "desktops": )";
  for (int i = 0; i < 100000; ++i) nested += '[';
  for (const auto& text :
       {std::string(), std::string("{"), std::string("[]"), std::string(R"({"version": 2, "desktops": {}})"), nested,
        std::string(R"({"version": 1, "desktops": [1]})"),
        std::string(
            R"({"version": 1, "desktops": {"main/UUID-1": {"color": "#zzzzzz", "order": 1, "wallpaper": ""}}})"),
        std::string(R"({"version": 1, "desktops": {"main/UUID-1": {"color": 7, "order": -1}, "b": null}})")}) {
    std::ofstream(cacheFolder / "colors.json", std::ios::trunc) << text;
    takeLog();
    make();
    EXPECT_FALSE(ready(1).image) << text.substr(0, 80);
    EXPECT_THAT(takeLog(), Contains(HasSubstr("WALLPAPER: "))) << text.substr(0, 80);
  }
  show(1, red);
  backgrounds->learn("main", 1);
  settle();
  EXPECT_EQ(cached().size(), 1U) << "what is of no use is removed";
  EXPECT_TRUE(fs::exists(cacheFolder / "notes.txt")) << "what is not ours stays";
  make();
  EXPECT_EQ(ready(1).color, red);
}

TEST_F(BackgroundTest, ACacheThatCannotBeWrittenDoesNoHarm) {
  begin();
  std::ofstream(folder / "cache") << "no folder";
  make();
  show(1, red);
  backgrounds->learn("main", 1);
  settle();
  EXPECT_EQ(ready(1).color, red);
  EXPECT_THAT(takeLog(), Contains(HasSubstr("cannot be written")));
  // Whatever is still under way when this goes.
  backgrounds->learn("main", 1);
  backgrounds->background("main", 2, {300, 200});
  backgrounds->refresh();
  backgrounds.reset();
  settle();
}

}  // namespace
}  // namespace tessaspaces
