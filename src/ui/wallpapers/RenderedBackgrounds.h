#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>

#include "settings/AtomicFile.h"
#include "ui/wallpapers/BackgroundCache.h"
#include "ui/wallpapers/SerialWork.h"
#include "ui/wallpapers/WallpaperPainter.h"

namespace tessaspaces {

/// A picture in the cache, read when it is rendered.
struct LearnedSource {
  std::string key;
  /// Changes with the picture.
  std::uint64_t order = 0;
  /// Shown where the picture is lost.
  std::uint32_t color = 0xFF000000;
  friend bool operator==(const LearnedSource&, const LearnedSource&) = default;
};

/// Where the picture of a background comes from: a wallpaper's file, a picture at hand, or what was learned.
struct BackgroundSource {
  std::optional<WallpaperFile> file;
  /// With a file alone.
  WallpaperPlace place;
  /// Counts by identity.
  ImageRef picture;
  std::optional<LearnedSource> learned;
  friend bool operator==(const BackgroundSource&, const BackgroundSource&) = default;
};

/// Backgrounds in the sizes of the tiles that they are drawn on, made off the main thread. Tiles that show the same
/// share one. Main thread.
class RenderedBackgrounds {
 public:
  /// `changed` is called when something that was asked for is there.
  RenderedBackgrounds(SerialWork& work, BackgroundCache cache, std::function<void()> changed)
      : work_(work), cache_(std::move(cache)), changed_(std::move(changed)) {}

  /// At once: in this size, else in another one while this is being made; null while there is none. Valid until the
  /// main thread does something else.
  const PaintedBackground* find(const BackgroundSource& source, ImageSize pixels);
  /// Forgets all that `find` is not asked for while this runs `ask`.
  void keepOnly(const std::function<void()>& ask);
  /// Makes those anew whose files have changed.
  void refresh();

 private:
  struct Entry {
    BackgroundSource source;
    ImageSize pixels;
    std::optional<PaintedBackground> background;
    std::optional<FileStamp> stamp;
    unsigned used = 0;
  };
  struct Rendering {
    PaintedBackground background;
    std::optional<FileStamp> stamp;
  };

  void render(const Entry& entry);
  void finished(const BackgroundSource& source, ImageSize pixels, const Rendering& rendering);
  void compareStamps(const std::map<std::string, std::optional<FileStamp>>& stamps);
  void complain(const std::string& path, const std::string& complaint);

  SerialWork& work_;
  BackgroundCache cache_;
  std::function<void()> changed_;
  std::list<Entry> entries_;
  std::map<std::string, std::string> complaints_;  // the last one about each file
  unsigned generation_ = 0;
};

}  // namespace tessaspaces
