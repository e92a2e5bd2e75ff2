// Draws scenes of the overview into PNG files: tessaspaces_gallery [FOLDER [NAME...]], or times them: --time.

#include <fmt/core.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "gallery/Scenes.h"
#include "gallery/Timing.h"
#include "platform/Platform.h"
#include "ui/ScenePainter.h"
#include "ui/ZoomAnimation.h"

namespace {

using namespace tessaspaces;

bool save(const QImage& image, const std::filesystem::path& file) {
  if (image.save(QString::fromStdString(file.string()))) return true;
  fmt::print(stderr, "tessaspaces_gallery: {} cannot be written.\n", file.string());
  return false;
}

bool draw(const gallery::Exhibit& exhibit, const std::filesystem::path& folder) {
  const Theme theme = Theme::make(exhibit.dark, QColor(0x3D8BFD));
  ScenePainter painter;
  painter.setScene(exhibit.scene, exhibit.scale, theme);
  bool saved = save(painter.render(), folder / (exhibit.name + ".png"));
  if (exhibit.name != "four") return saved;
  // And how it zooms.
  const ZoomAnimation zoom(painter, {GridPanelView::Zoom::Direction::in, exhibit.scene.tiles[2].content, {}});
  for (const int percent : {20, 40, 60, 100}) {
    QImage frame(static_cast<int>(exhibit.scene.bounds.width), static_cast<int>(exhibit.scene.bounds.height),
                 QImage::Format_RGB32);
    QPainter on(&frame);
    zoom.paint(on, percent / 100.0);
    on.end();
    saved = save(frame, folder / fmt::format("zoom-{}.png", percent)) && saved;
  }
  return saved;
}

}  // namespace

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  const QGuiApplication application(argc, argv);
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (!words.empty() && words[0] == "--time") return gallery::printTimes();
  const std::filesystem::path folder = words.empty() ? "gallery" : words[0];
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  bool saved = true;
  bool any = false;
  const auto exhibits = gallery::exhibits();
  // The texts are in the language that the platform prefers.
  const gallery::PlatformFor platform({1920, 1080});
  for (const auto& exhibit : exhibits) {
    if (words.size() > 1 && std::find(words.begin() + 1, words.end(), exhibit.name) == words.end()) continue;
    saved = draw(exhibit, folder) && saved;
    any = true;
  }
  if (!any) fmt::print(stderr, "tessaspaces_gallery: there is no such picture.\n");
  return saved && any ? 0 : 1;
}
