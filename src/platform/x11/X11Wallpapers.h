#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/WindowCapture.h"
#include "platform/x11/PictureBatch.h"
#include "platform/x11/XfceDesktop.h"

namespace tessaspaces {

/// What lies behind the windows: where Xfce paints the desktops, what its settings say of each; otherwise the pixmap
/// that wallpaper programs leave at the root for those who want to see through. Main thread.
class X11Wallpapers {
 public:
  X11Wallpapers(CaptureLink& link, SharedSegment& memory) : link_(link), memory_(memory) {}

  struct Place {
    std::string monitor;  // RandR name
    PixelRect area;
    std::optional<std::uint32_t> desktop;  // from 0
  };
  /// One or two round trips, none while what is known holds. No other batch is on its way.
  Wallpaper wallpaper(const Place& place, int longestSide);

  /// Whether this property of the root tells of a wallpaper.
  [[nodiscard]] bool concerns(xcb_atom_t property) const {
    return property == link_.rootPixmap() || property == link_.esetrootPixmap();
  }
  void forget() { painted_.clear(); }

 private:
  bool isXfcePainting();
  std::optional<WallpaperFile> ofXfce(const Place& place);
  ImageRef painted(const PixelRect& area, int longestSide);

  CaptureLink& link_;
  SharedSegment& memory_;
  struct Key {
    int x, y, width, height, longestSide;
    auto operator<=>(const Key&) const = default;
  };
  std::map<Key, ImageRef> painted_;
  XfceBackdrops backdrops_;
  std::filesystem::file_time_type readAt_;  // the file's own time
};

}  // namespace tessaspaces
