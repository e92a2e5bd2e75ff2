#include "gallery/Scenes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <utility>

#include "gallery/Wallpapers.h"
#include "gallery/WindowPictures.h"
#include "grid/GridLayout.h"
#include "platform/Platform.h"
#include "platform/simulated/SimulatedPlatform.h"

namespace tessaspaces::gallery {
namespace {

using Look = GridScene::Window::Look;

/// As large as captures are by default.
constexpr int captureSide = 480;

const std::array<const char*, 16> names = {"Mail",   "Code",  "Browser", "Writing", "Music",  "Photos",   "Servers", "Chat",
                                           "Budget", "Plans", "Reading", "Design",  "Travel", "Research", "Review",  "Desktop 16"};

ImageRef preview(int application, int number, const Rect& bounds) {
  static std::map<std::tuple<int, int, int, int>, ImageRef> made;
  const double part = std::min(1.0, captureSide / std::max(bounds.width, bounds.height));
  const int width = std::max(1, static_cast<int>(std::lround(bounds.width * part)));
  const int height = std::max(1, static_cast<int>(std::lround(bounds.height * part)));
  auto& image = made[{application, number, width, height}];
  if (!image) image = imageOf(windowPicture(application, number, width, height));
  return image;
}

ImageRef iconOf(int application) {
  static std::map<int, ImageRef> made;
  auto& image = made[application];
  if (!image) image = imageOf(applicationIcon(application, 64));
  return image;
}

/// Places as a user leaves windows.
Rect anyBounds(std::mt19937& random, Size screen) {
  const auto any = [&](double from, double to) { return std::uniform_real_distribution<double>(from, to)(random); };
  const double width = std::round(screen.width * any(0.34, 0.62));
  const double height = std::round(screen.height * any(0.4, 0.72));
  return {std::round(any(0.02, 0.98) * (screen.width - width)), std::round(any(0.03, 0.97) * (screen.height - height)),
          width, height};
}

GridScene::Window& window(GridScene& scene, std::size_t tile, std::size_t index) {
  return scene.tiles.at(tile).windows.at(index);
}

GridScene dragged(GridScene scene) {
  auto& lifted = window(scene, 0, 0);
  auto inHand = lifted;
  lifted.look = Look::lifted;
  const auto& target = scene.tiles.at(3);
  inHand.rect.x = target.content.x - inHand.rect.width * 0.35;
  inHand.rect.y = target.content.y + target.content.height * 0.2;
  scene.tiles.at(3).dropTarget = true;
  scene.carried = GridScene::Carried{inHand};
  return scene;
}

GridScene filtered(GridScene scene, int wanted) {
  scene.filter = "mail";
  scene.matches = 0;
  for (auto& tile : scene.tiles) {
    tile.dimmed = true;
    for (auto& shown : tile.windows) {
      const bool match = shown.application == applicationName(wanted).toStdString();
      shown.look = !match ? Look::dimmed : scene.matches == 0 ? Look::best : Look::lit;
      if (match) tile.dimmed = false, ++scene.matches;
    }
  }
  return scene;
}

GridScene longNamed(GridScene scene) {
  const std::array<const char*, 6> labels = {
      "A desktop whose name goes on and on and would never fit under any tile at all", "مكتب العمل اليومي للمشروع الكبير",
      "家と仕事のあいだの長い名前のデスクトップ", "", "Line\nbreak\tand  spaces", "Rakéta 🚀🚀🚀 čšřžýáíé"};
  for (std::size_t i = 0; i < scene.tiles.size(); ++i) scene.tiles[i].label = labels[i % labels.size()];
  scene.title = "An external display with a name that its maker thought long and hard about (HDMI-A-0, 27 inches)";
  scene.hint = "A hint that is far too long for the strip that it is to be shown in, with every key of the keyboard explained "
               "at length, and then some more words, so that even a wide display has no room for them all";
  scene.tiles.at(0).fullScreenApplication = "A presentation program with an endless name that covers it all, truly endless";
  return scene;
}

}  // namespace

struct PlatformFor::Parts {
  std::unique_ptr<SimulatedPlatform> platform;
};

PlatformFor::PlatformFor(Size screen) : parts_(std::make_unique<Parts>()) {
  const auto side = [](double length) { return std::to_string(std::lround(length)); };
  parts_->platform =
      SimulatedPlatform::fromText("main " + side(screen.width) + "x" + side(screen.height) + " | A*");
  setPlatform(parts_->platform.get());
}

PlatformFor::~PlatformFor() {
  setPlatform(nullptr);
}

GridScene makeScene(const Kind& kind) {
  std::mt19937 random(7);
  SpacesSnapshot snapshot;
  WindowID id = 100;
  for (int i = 0; i < kind.desktops; ++i) {
    auto desktop = std::make_shared<DesktopInfo>(static_cast<SpaceID>(i + 1), "main");
    desktop->screen = platform().screens().mainScreen();
    const int count = kind.windows / kind.desktops + (i < kind.windows % kind.desktops ? 1 : 0);
    for (int j = 0; j < count; ++j) desktop->windows.push_back({id++, "", 1, anyBounds(random, kind.bounds)});
    snapshot.desktops.push_back(std::move(desktop));
  }
  GridLayout layout;
  layout.setSnapshot(snapshot);
  layout.setGrid(kind.rows, kind.columns);
  layout.setBounds(kind.bounds);
  layout.setExplodedAll(kind.exploded);
  layout.layoutGrid();

  GridScene scene;
  scene.bounds = kind.bounds;
  scene.header = layout.headerRect();
  scene.title = "Built-in Display";
  scene.hint = "Arrows and Enter switch  ·  drag a window to another desktop  ·  Esc closes";
  scene.keyboard = true;
  scene.exploded = kind.exploded;
  for (std::size_t i = 0; i < layout.tileRects().size(); ++i) {
    const auto& desktop = *snapshot.desktops[i];
    GridScene::Tile tile;
    tile.space = desktop.spaceID;
    tile.rect = layout.tileRects()[i];
    tile.content = layout.contentRects()[i];
    tile.number = static_cast<int>(i) + 1;
    tile.label = names[i % names.size()];
    tile.current = i == (layout.tileRects().size() > 4 ? 5 : 1);
    if (kind.wallpapers) {
      const auto pixels = [&](double points) { return static_cast<int>(std::lround(points * kind.scale)); };
      tile.background.image = imageOf(wallpaper(kind.oneWallpaper ? 0 : static_cast<int>(i),
                                                pixels(tile.content.width), pixels(tile.content.height)));
    }
    for (std::size_t j = 0; j < desktop.windows.size(); ++j) {
      const auto& from = desktop.windows[j];
      const int application = static_cast<int>(i * 3 + j * 5) % applications;
      const int number = static_cast<int>(i + j);
      GridScene::Window shown;
      shown.id = from.id;
      shown.rect = layout.thumbRects()[i][j];
      if (kind.previews) shown.picture = preview(application, number, from.bounds);
      shown.icon = iconOf(application);
      shown.title = windowTitle(application, number).toStdString();
      shown.application = applicationName(application).toStdString();
      tile.windows.push_back(std::move(shown));
    }
    scene.tiles.push_back(std::move(tile));
  }
  return scene;
}

std::vector<Exhibit> exhibits() {
  std::vector<Exhibit> all;
  const PlatformFor fullHD({1920, 1080});
  const Kind four;
  const GridScene usual = makeScene(four);
  const auto changed = [&](const GridScene& scene, auto change) {
    GridScene result = scene;
    change(result);
    return result;
  };
  all.push_back({"four", true, 1, usual});
  all.push_back({"four-light", false, 1, usual});
  all.push_back({"hovered", true, 1, changed(usual, [](GridScene& scene) {
                   scene.tiles[2].hovered = true;
                   scene.tiles[2].selected = true;
                   window(scene, 2, 1).look = Look::hovered;
                 })});
  all.push_back({"drag", true, 1, dragged(usual)});
  all.push_back({"icons", true, 1, makeScene([&] { auto kind = four; kind.previews = false; return kind; }())});
  all.push_back({"empty", true, 1, changed(makeScene([&] {
                   auto kind = four;
                   kind.desktops = 3;
                   kind.windows = 1;
                   return kind;
                 }()), [&](GridScene& scene) {
                   scene.plus = GridScene::Plus{};
                   scene.plus->rect = usual.tiles[3].rect;
                   scene.tiles[2].fullScreenApplication = "Presentation";
                   scene.tiles[2].selected = true;
                 })});
  all.push_back({"long-names", true, 1, longNamed(usual)});
  all.push_back({"no-wallpaper", true, 1, makeScene([&] { auto kind = four; kind.wallpapers = false; return kind; }())});
  Kind many;
  many.rows = many.columns = 4;
  many.desktops = 16;
  many.windows = 100;
  const GridScene crowd = makeScene(many);
  all.push_back({"sixteen", true, 1, changed(crowd, [](GridScene& scene) { scene.tiles[5].selected = true; })});
  many.exploded = true;
  all.push_back({"exploded", true, 1, changed(makeScene(many), [](GridScene& scene) {
                   scene.tiles[6].hovered = true;
                   window(scene, 6, 2).look = Look::hovered;
                 })});
  many.exploded = false;
  many.oneWallpaper = true;
  all.push_back({"filter", true, 1, filtered(makeScene(many), 3)});
  all.push_back({"filter-light", false, 1, filtered(makeScene(many), 3)});
  Kind fine = four;
  fine.bounds = {1440, 900};
  fine.scale = 2;
  const PlatformFor laptop(fine.bounds);
  all.push_back({"fine-2x", true, 2, makeScene(fine)});
  fine.scale = 1.5;
  all.push_back({"fine-1.5x", false, 1.5, makeScene(fine)});
  Kind small = many;
  small.oneWallpaper = false;
  small.bounds = {1024, 640};
  small.rows = small.columns = 6;
  small.desktops = 33;
  all.push_back({"small-display", true, 1, makeScene(small)});
  return all;
}

}  // namespace tessaspaces::gallery
