#include "grid/GridZoomWish.h"

#include <chrono>

#include "platform/Platform.h"
#include "settings/Settings.h"

namespace tessaspaces {

std::optional<Duration> gridZoomWish() {
  if (!Settings::showGridZoomAnimation() || platform().preferences().reduceMotion()) return std::nullopt;
  return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(duration(Settings::gridZoomSpeed())));
}

}  // namespace tessaspaces
