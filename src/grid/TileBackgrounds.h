#pragma once

#include <string>

#include "base/Signal.h"
#include "grid/GridScene.h"
#include "platform/WindowCapture.h"

namespace tessaspaces {

/// What lies behind the windows of each desktop: the wallpaper, else a learned picture, else a colour. Main thread.
class TileBackgrounds {
 public:
  virtual ~TileBackgrounds() = default;
  /// At once, from what is at hand; what has to be read or scaled first comes later, with `changed`. `pixels` is how
  /// large a tile's content is, in device pixels.
  virtual TileBackground background(const std::string& displayUUID, SpaceID space, ImageSize pixels) = 0;
  /// Looks whether the wallpapers are still the ones it knows: before the overview opens, and on a changed setting.
  virtual void refresh() = 0;
  /// The display shows this desktop now, and nothing of this program covers it: what is there may be learned.
  virtual void learn(const std::string& displayUUID, SpaceID space) = 0;
  /// Ask again.
  Signal<> changed;
};

}  // namespace tessaspaces
