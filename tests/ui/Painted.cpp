#include "ui/Painted.h"

#include <cstring>
#include <memory>
#include <vector>

namespace tessaspaces {

ImageRef plain(QRgb color, int width, int height) {
  const auto pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  return std::make_shared<Image>(Image{width, height, std::vector<std::uint32_t>(pixels, color)});
}

ImageRef picture(int number, int width, int height) {
  const QColor color = QColor::fromHsv(number * 77 % 360, 120 + number * 31 % 130, 200);
  Image image = *plain(color.rgb(), width, height);
  for (int y = height / 4; y < height / 2; ++y) {
    for (int x = width / 5; x < width / 2; ++x) {
      image.pixels[static_cast<std::size_t>(y * width + x)] = color.darker(180).rgb();
    }
  }
  return std::make_shared<Image>(std::move(image));
}

GridScene sampleScene() {
  GridScene scene;
  scene.bounds = {640, 400};
  scene.header = {0, 0, 640, 400};
  scene.title = "A display";
  scene.hint = "What the keys do";
  for (int i = 0; i < 6; ++i) {
    GridScene::Tile tile;
    tile.space = static_cast<SpaceID>(i + 1);
    // Not on whole pixels, as tiles mostly are not.
    tile.rect = {20.3 + i % 3 * 201.7, 62.4 + i / 3 * 140.6, 187.7, 117.3};
    tile.content = tile.rect.inset(2, 2);
    tile.number = i + 1;
    tile.label = "Name " + std::to_string(i * 7);
    tile.current = i == 1;
    if (i != 4) tile.background.image = picture(i, 96, 60);
    for (int j = 0; j < 3; ++j) {
      GridScene::Window window;
      window.id = static_cast<WindowID>(10 * i + j + 1);
      window.rect = {tile.content.x + 8.2 + j * 37.1, tile.content.y + 6.9 + j * 21.3, 73.4, 52.6};
      if (j != 2) window.picture = picture(3 * i + j);
      if (j == 2) window.icon = picture(i, 16, 16);
      window.title = "Window " + std::to_string(j);
      window.application = "Program";
      tile.windows.push_back(std::move(window));
    }
    scene.tiles.push_back(std::move(tile));
  }
  return scene;
}

Theme sampleTheme(bool dark) {
  return Theme::make(dark, QColor(0x3D8BFD));
}

QImage drawn(const GridScene& scene, double scale, const Theme& theme) {
  ScenePainter painter;
  painter.setScene(scene, scale, theme);
  return painter.render();
}

std::string difference(const QImage& actual, const QImage& expected) {
  if (actual.size() != expected.size()) return "another size";
  const QImage a = actual.convertToFormat(QImage::Format_RGB32);
  const QImage b = expected.convertToFormat(QImage::Format_RGB32);
  for (int y = 0; y < a.height(); ++y) {
    if (std::memcmp(a.constScanLine(y), b.constScanLine(y), 4 * static_cast<std::size_t>(a.width())) == 0) continue;
    for (int x = 0; x < a.width(); ++x) {
      if (a.pixel(x, y) == b.pixel(x, y)) continue;
      return "(" + std::to_string(x) + ", " + std::to_string(y) + "): " + QColor(a.pixel(x, y)).name().toStdString() +
             " instead of " + QColor(b.pixel(x, y)).name().toStdString();
    }
  }
  return {};
}

}  // namespace tessaspaces
