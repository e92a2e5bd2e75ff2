#pragma once

#include <functional>
#include <string>
#include <vector>

#include "grid/GridScene.h"

namespace tessaspaces::gallery {

/// What the scenes are made of.
struct Kind {
  Size bounds{1920, 1080};
  /// Device pixels per point that pictures are made for.
  double scale = 1;
  int rows = 2;
  int columns = 2;
  int desktops = 4;
  int windows = 20;
  bool exploded = false;
  bool previews = true;
  /// Every desktop has the same wallpaper; else each has its own.
  bool oneWallpaper = false;
  bool wallpapers = true;
};

/// Laid out as the overview does. Needs a platform with a main screen of that extent (`PlatformFor`).
[[nodiscard]] GridScene makeScene(const Kind& kind);

/// A simulated platform with one screen while it lives.
class PlatformFor {
 public:
  explicit PlatformFor(Size screen);
  ~PlatformFor();
  PlatformFor(const PlatformFor&) = delete;
  PlatformFor& operator=(const PlatformFor&) = delete;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

/// A picture of the gallery.
struct Exhibit {
  std::string name;
  bool dark = true;
  double scale = 1;
  GridScene scene;
};
[[nodiscard]] std::vector<Exhibit> exhibits();

}  // namespace tessaspaces::gallery
