#include "grid/ScreenGeometry.h"

#include <algorithm>

#include "platform/Platform.h"

namespace tessaspaces::ScreenGeometry {

Rect flipped(const Rect& screenRect) {
  const auto screens = platform().screens().screens();
  const double height = screens.empty() ? 0 : screens.front()->frame.height;
  return {screenRect.x, height - screenRect.maxY(), screenRect.width, screenRect.height};
}

double screenAspect() {
  const auto screen = platform().screens().mainScreen();
  if (!screen || !(screen->frame.height > 0)) return 16.0 / 9;
  return screen->frame.width / screen->frame.height;
}

Size tileSize(double availableWidth, double availableHeight, int columns, int rows, double gap,
              std::optional<double> aspect) {
  const double across = std::max(1, columns);
  const double down = std::max(1, rows);
  const double ratio = aspect ? *aspect : screenAspect();
  double width = (availableWidth - (across - 1) * gap) / across;
  double height = width / ratio;
  const double most = (availableHeight - (down - 1) * gap) / down;
  if (height > most) {
    height = most;
    width = height * ratio;
  }
  return {std::max(0.0, width), std::max(0.0, height)};
}

double menuBarInset(const ScreenRef& screen) {
  const auto shown = screen ? screen : platform().screens().mainScreen();
  return shown ? std::max(0.0, shown->frame.maxY() - shown->visibleFrame.maxY()) : 0;
}

}  // namespace tessaspaces::ScreenGeometry
