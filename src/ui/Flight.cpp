#include "ui/Flight.h"

#include <algorithm>
#include <utility>

#include "ui/ZoomAnimation.h"

namespace tessaspaces {
namespace {

/// From here on it fades.
constexpr double fadeStart = 0.75;

}  // namespace

Flight::Flight(GridScene::Window window, const Rect& from, const Rect& to)
    : window_(std::move(window)), from_(from), to_(to) {}

Rect Flight::rectAt(double progress) const {
  const double share = ZoomAnimation::eased(progress);
  const auto between = [share](double a, double b) { return a + (b - a) * share; };
  return {between(from_.x, to_.x), between(from_.y, to_.y), between(from_.width, to_.width),
          between(from_.height, to_.height)};
}

QRect Flight::bounds(const ScenePainter& painter, double progress) const {
  return painter.carriedBounds(rectAt(progress)).toAlignedRect();
}

void Flight::paint(QPainter& painter, ScenePainter& scene, double progress) const {
  const double opacity = 1 - std::clamp((progress - fadeStart) / (1 - fadeStart), 0.0, 1.0);
  if (opacity > 0) scene.paintCarried(painter, window_, rectAt(progress), opacity);
}

}  // namespace tessaspaces
