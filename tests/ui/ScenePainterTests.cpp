#include <gmock/gmock.h>

#include <QPainter>
#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "ui/Painted.h"

namespace tessaspaces {
namespace {

using Look = GridScene::Window::Look;

/// One way in which a scene changes while it is used.
struct Change {
  const char* name;
  std::function<void(GridScene&, std::mt19937&)> make;
};

int any(std::mt19937& random, int below) {
  return std::uniform_int_distribution<int>(0, below - 1)(random);
}

GridScene::Tile& anyTile(GridScene& scene, std::mt19937& random) {
  return scene.tiles[static_cast<std::size_t>(any(random, static_cast<int>(scene.tiles.size())))];
}

void withAnyWindow(GridScene& scene, std::mt19937& random, const std::function<void(GridScene::Window&)>& change) {
  auto& windows = anyTile(scene, random).windows;
  if (!windows.empty()) change(windows[static_cast<std::size_t>(any(random, static_cast<int>(windows.size())))]);
}

const std::vector<std::string>& texts() {
  static const std::vector<std::string> all = {
      "", "Short", "A name that is a good deal longer than any tile is wide", "مكتب العمل", "Two\nlines", "🚀🚀", "7"};
  return all;
}

std::string anyText(std::mt19937& random) {
  return texts()[static_cast<std::size_t>(any(random, static_cast<int>(texts().size())))];
}

const std::vector<Change>& allChanges() {
  static const std::vector<Change> all = {
      {"tile hovered", [](auto& scene, auto& random) { anyTile(scene, random).hovered ^= true; }},
      {"tile selected", [](auto& scene, auto& random) { anyTile(scene, random).selected ^= true; }},
      {"drop target", [](auto& scene, auto& random) { anyTile(scene, random).dropTarget ^= true; }},
      {"tile dimmed", [](auto& scene, auto& random) { anyTile(scene, random).dimmed ^= true; }},
      {"current", [](auto& scene, auto& random) { anyTile(scene, random).current ^= true; }},
      {"label", [](auto& scene, auto& random) { anyTile(scene, random).label = anyText(random); }},
      {"number", [](auto& scene, auto& random) { anyTile(scene, random).number = any(random, 200); }},
      {"full screen",
       [](auto& scene, auto& random) { anyTile(scene, random).fullScreenApplication = anyText(random); }},
      {"background",
       [](auto& scene, auto& random) {
         auto& background = anyTile(scene, random).background;
         background.image = any(random, 4) == 0 ? nullptr : picture(any(random, 50), 90 + any(random, 20), 60);
         background.color = 0xFF000000U + static_cast<std::uint32_t>(any(random, 0xFFFFFF));
       }},
      {"window's look",
       [](auto& scene, auto& random) {
         withAnyWindow(scene, random, [&](auto& window) { window.look = static_cast<Look>(any(random, 6)); });
       }},
      {"window's picture",
       [](auto& scene, auto& random) {
         withAnyWindow(scene, random, [&](auto& window) {
           window.picture = any(random, 3) == 0 ? nullptr : picture(any(random, 90), 40 + any(random, 200), 60);
         });
       }},
      {"window's icon",
       [](auto& scene, auto& random) {
         withAnyWindow(scene, random,
                       [&](auto& window) { window.icon = any(random, 2) ? nullptr : picture(any(random, 9), 24, 24); });
       }},
      {"window's name",
       [](auto& scene, auto& random) {
         withAnyWindow(scene, random,
                       [&](auto& window) { window.title = anyText(random), window.application = anyText(random); });
       }},
      {"window moved",
       [](auto& scene, auto& random) {
         auto& tile = anyTile(scene, random);
         if (tile.windows.empty()) return;
         Rect rect{tile.content.x + any(random, 190) - 9.3, tile.content.y + any(random, 120) - 7.7,
                   4.0 + any(random, 90), 3.0 + any(random, 80)};
         tile.windows.front().rect = any(random, 8) == 0 ? Rect{} : rect.intersection(tile.content);
       }},
      {"window gone",
       [](auto& scene, auto& random) {
         auto& windows = anyTile(scene, random).windows;
         if (!windows.empty()) windows.pop_back();
       }},
      {"windows reordered",
       [](auto& scene, auto& random) {
         auto& windows = anyTile(scene, random).windows;
         std::reverse(windows.begin(), windows.end());
       }},
      {"filter", [](auto& scene, auto& random) { scene.filter = anyText(random), scene.matches = any(random, 12); }},
      {"keyboard", [](auto& scene, auto&) { scene.keyboard ^= true; }},
      {"title", [](auto& scene, auto& random) { scene.title = anyText(random); }},
      {"hint", [](auto& scene, auto& random) { scene.hint = anyText(random); }},
      {"exploded", [](auto& scene, auto&) { scene.exploded ^= true; }},
      {"plus",
       [](auto& scene, auto& random) {
         if (any(random, 4) == 0) return scene.plus.reset();
         scene.plus = GridScene::Plus{{440.4, 250.8, 120 + any(random, 60) * 1.3, 90},
                                      any(random, 2) > 0,
                                      any(random, 2) > 0,
                                      any(random, 3) == 0};
       }},
      {"carried",
       [](auto& scene, auto& random) {
         if (any(random, 5) == 0) return scene.carried.reset();
         auto window = sampleScene().tiles[0].windows[static_cast<std::size_t>(any(random, 3))];
         window.rect.x = any(random, 700) - 60.4;
         window.rect.y = any(random, 450) - 50.2;
         scene.carried = GridScene::Carried{window};
       }},
      {"tile gone or back",
       [](auto& scene, auto& random) {
         if (scene.tiles.size() > 3 && any(random, 2) == 0) return scene.tiles.pop_back();
         const auto whole = sampleScene();
         while (scene.tiles.size() < whole.tiles.size()) scene.tiles.push_back(whole.tiles[scene.tiles.size()]);
       }},
      {"tiles swapped", [](auto& scene, auto&) { std::swap(scene.tiles[0], scene.tiles[2]); }},
      {"tile moved",
       [](auto& scene, auto& random) {
         auto& tile = anyTile(scene, random);
         tile.rect.width = 150.5 + any(random, 40);
         tile.content = tile.rect.inset(2, 2);
       }},
  };
  return all;
}

class ScenePainterTest : public PaintingTest {};

TEST_F(ScenePainterTest, WhatChangedIsDrawnAsIfAllWereDrawnAnew) {
  for (const double scale : {1.0, 1.5, 2.0}) {
    std::mt19937 random(static_cast<unsigned>(scale * 100));
    GridScene scene = sampleScene();
    ScenePainter painter;
    painter.setScene(scene, scale, sampleTheme());
    QImage screen = painter.render();
    std::string sofar;
    for (int step = 0; step < 2 * static_cast<int>(allChanges().size()); ++step) {
      // Each in its turn, along with any others.
      sofar.clear();
      const int count = 1 + any(random, 3);
      for (int i = 0; i < count; ++i) {
        const auto& all = allChanges();
        const auto pick = i == 0 ? step : any(random, static_cast<int>(all.size()));
        const auto& change = all[static_cast<std::size_t>(pick) % all.size()];
        change.make(scene, random);
        sofar += std::string(change.name) + ", ";
      }
      const QRegion region = painter.setScene(scene, scale, sampleTheme());
      {
        QPainter on(&screen);
        painter.paint(on, region);
      }
      ASSERT_EQ(difference(screen, drawn(scene, scale)), "") << "scale " << scale << " step " << step << ": " << sofar;
    }
  }
}

TEST_F(ScenePainterTest, DrawsNoMoreThanWasChanged) {
  GridScene scene = sampleScene();
  ScenePainter painter;
  const QRect all(0, 0, 640, 400);
  EXPECT_EQ(painter.setScene(scene, 1, sampleTheme()), QRegion(all));
  EXPECT_TRUE(painter.setScene(scene, 1, sampleTheme()).isEmpty());

  scene.tiles[0].windows[0].look = Look::hovered;
  const QRegion hover = painter.setScene(scene, 1, sampleTheme());
  EXPECT_TRUE(QRect(20, 62, 189, 119).contains(hover.boundingRect()));
  scene.filter = "a";
  EXPECT_LT(painter.setScene(scene, 1, sampleTheme()).boundingRect().bottom(), 100);
  EXPECT_EQ(painter.setScene(scene, 2, sampleTheme()), QRegion(all));
  EXPECT_EQ(painter.setScene(scene, 2, sampleTheme(false)), QRegion(all));
}

TEST_F(ScenePainterTest, EveryStateIsSeen) {
  const QImage usual = drawn(sampleScene());
  std::vector<QImage> seen = {usual};
  const auto expectNew = [&](const char* what, const std::function<void(GridScene&)>& change) {
    GridScene scene = sampleScene();
    change(scene);
    const QImage image = drawn(scene);
    for (const auto& other : seen) EXPECT_NE(difference(image, other), "") << what;
    seen.push_back(image);
  };
  for (const auto look : {Look::hovered, Look::lit, Look::best, Look::dimmed, Look::lifted}) {
    expectNew("look", [&](auto& scene) { scene.tiles[2].windows[0].look = look; });
  }
  expectNew("current", [](auto& scene) { scene.tiles[2].current = true; });
  expectNew("selected", [](auto& scene) { scene.tiles[2].selected = true; });
  expectNew("both", [](auto& scene) { scene.tiles[2].selected = scene.tiles[2].current = true; });
  expectNew("hovered", [](auto& scene) { scene.tiles[2].hovered = true; });
  expectNew("drop target", [](auto& scene) { scene.tiles[2].dropTarget = true; });
  expectNew("dimmed", [](auto& scene) { scene.tiles[2].dimmed = true; });
  expectNew("full screen", [](auto& scene) { scene.tiles[2].fullScreenApplication = "Cinema"; });
  expectNew("keyboard", [](auto& scene) { scene.keyboard = true; });
}

TEST_F(ScenePainterTest, APreviewThatIsCutOffIsNotSqueezed) {
  // The left half of a window's picture is red and the right half green; it hangs half over the tile's left edge.
  Image halves = *plain(0xFFFF0000, 80, 40);
  for (std::size_t i = 0; i < halves.pixels.size(); ++i) {
    if (i % 80 >= 40) halves.pixels[i] = 0xFF00FF00;
  }
  GridScene scene = sampleScene();
  auto& tile = scene.tiles[0];
  tile.windows.resize(1);
  tile.windows[0].picture = std::make_shared<Image>(halves);
  tile.windows[0].rect = {tile.content.x, tile.content.y + 30, 40, 40};
  const auto colorAt = [&](double x) { return QColor(drawn(scene).pixel(static_cast<int>(tile.content.x + x), 110)); };
  EXPECT_EQ(colorAt(6), QColor(0, 255, 0));
  EXPECT_EQ(colorAt(33), QColor(0, 255, 0));
  // Over the right edge it shows its left half.
  tile.windows[0].rect.x = tile.content.maxX() - 40;
  EXPECT_EQ(colorAt(tile.content.width - 33), QColor(255, 0, 0));
  // And where nothing cuts it off, both halves.
  tile.windows[0].rect = {tile.content.x + 20, tile.content.y + 30, 40, 40};
  EXPECT_EQ(colorAt(26), QColor(255, 0, 0));
  EXPECT_EQ(colorAt(53), QColor(0, 255, 0));
}

TEST_F(ScenePainterTest, PicturesThatAreWrongOrGoneDoNoHarm) {
  GridScene scene = sampleScene();
  auto broken = std::make_shared<Image>(Image{500, 500, {1, 2, 3}});
  scene.tiles[0].windows[0].picture = broken;
  scene.tiles[1].background.image = broken;
  scene.tiles[2].windows[2].icon = std::make_shared<Image>(Image{0, -4, {}});
  scene.tiles[3].content = scene.tiles[3].rect = {};
  scene.tiles[4].windows[0].rect = {10, 10, 0.2, 0.2};
  EXPECT_EQ(drawn(scene).size(), QSize(640, 400));
  scene.bounds = {};
  EXPECT_TRUE(drawn(scene).isNull());

  // A scene that went takes its pictures with it.
  ScenePainter painter;
  GridScene first = sampleScene();
  painter.setScene(first, 1, sampleTheme());
  static_cast<void>(painter.render());
  const std::weak_ptr<const Image> window = first.tiles[0].windows[0].picture;
  const std::weak_ptr<const Image> background = first.tiles[0].background.image;
  GridScene second = first;
  second.tiles[0].windows[0].picture = picture(80);
  second.tiles[0].background.image = picture(81);
  first = {};
  painter.setScene(second, 1, sampleTheme());
  EXPECT_TRUE(window.expired());
  EXPECT_TRUE(background.expired());
}

}  // namespace
}  // namespace tessaspaces
