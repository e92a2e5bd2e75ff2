#include "gallery/Timing.h"

#include <fmt/core.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <chrono>
#include <ctime>
#include <functional>
#include <optional>
#include <vector>

#include "gallery/Scenes.h"
#include "ui/Flight.h"
#include "ui/ScenePainter.h"
#include "ui/ZoomAnimation.h"

namespace tessaspaces::gallery {
namespace {

double milliseconds(const std::function<void()>& work) {
  // Of the processor: what else the machine does counts for nothing.
  const auto start = std::clock();
  work();
  return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void print(const std::string& what, std::vector<double> times) {
  std::sort(times.begin(), times.end());
  fmt::print("  {:34} median {:6.2f} ms   least {:6.2f} ms   most {:6.2f} ms\n", what, times[times.size() / 2],
             times.front(), times.back());
}

constexpr int rounds = 15;

void timeScene(const std::string& name, const Kind& kind) {
  fmt::print("{}: {} desktops, {} windows, {:.0f}x{:.0f} at {}x{}\n", name, kind.desktops, kind.windows,
             kind.bounds.width, kind.bounds.height, kind.scale, kind.exploded ? ", exploded" : "");
  const PlatformFor platform(kind.bounds);
  const GridScene scene = makeScene(kind);
  const Theme theme = Theme::make(true, QColor(0x3D8BFD));
  const QRect all(0, 0, static_cast<int>(scene.bounds.width), static_cast<int>(scene.bounds.height));
  QImage screen(all.size() * kind.scale, QImage::Format_RGB32);
  screen.setDevicePixelRatio(kind.scale);
  screen.fill(Qt::black);
  std::vector<double> cold, waited, warm, prepared, hover, drag, zoomStart, zoomFrame, same;
  for (int round = 0; round < rounds; ++round) {
    ScenePainter painter;
    const auto paint = [&](const QRegion& region) {
      QPainter on(&screen);
      painter.paint(on, region);
    };
    painter.setScene(scene, kind.scale, theme);
    const auto start = std::chrono::steady_clock::now();
    cold.push_back(milliseconds([&] { paint(all); }));
    waited.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    warm.push_back(milliseconds([&] { paint(all); }));
    {
      // The pictures are ready, as after an earlier opening, but every tile is drawn anew.
      GridScene other = scene;
      for (auto& tile : other.tiles) tile.dimmed = true;
      painter.setScene(other, kind.scale, theme);
      prepared.push_back(milliseconds([&] {
        painter.setScene(scene, kind.scale, theme);
        paint(all);
      }));
    }
    GridScene hovered = scene;
    hovered.tiles[1].hovered = true;
    hovered.tiles[1].windows[0].look = GridScene::Window::Look::hovered;
    hover.push_back(milliseconds([&] { paint(painter.setScene(hovered, kind.scale, theme)); }));
    same.push_back(milliseconds([&] { painter.setScene(hovered, kind.scale, theme); }));
    for (int step = 0; step < 10; ++step) {
      GridScene moved = hovered;
      GridScene::Carried carried{hovered.tiles[0].windows[0]};
      carried.window.rect.x += 25 * step;
      carried.window.rect.y += 9 * step;
      moved.carried = carried;
      drag.push_back(milliseconds([&] { paint(painter.setScene(moved, kind.scale, theme)); }));
    }
    std::optional<ZoomAnimation> zoom;
    zoomStart.push_back(milliseconds([&] {
      zoom.emplace(painter, GridPanelView::Zoom{GridPanelView::Zoom::Direction::in, scene.tiles[0].content, {}});
    }));
    for (int step = 0; step <= 12; ++step) {
      zoomFrame.push_back(milliseconds([&] {
        QPainter on(&screen);
        zoom->paint(on, step / 12.0);
      }));
    }
  }
  print("everything, nothing ready", cold);
  print("the same by the clock", waited);
  print("everything, pictures ready", prepared);
  print("everything again", warm);
  print("a hover", hover);
  print("the same scene again", same);
  print("a step of a drag", drag);
  print("start of a zoom", zoomStart);
  print("a frame of a zoom", zoomFrame);
}

}  // namespace

int printTimes() {
  Kind kind;
  timeScene("few", kind);
  kind.desktops = 16;
  kind.rows = kind.columns = 4;
  kind.windows = 100;
  timeScene("many", kind);
  kind.exploded = true;
  timeScene("apart", kind);
  kind.scale = 2;
  timeScene("fine", kind);
  return 0;
}

}  // namespace tessaspaces::gallery
