#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "grid/TileBackgrounds.h"
#include "platform/Dispatch.h"
#include "ui/wallpapers/BackgroundCache.h"
#include "ui/wallpapers/RenderedBackgrounds.h"

namespace tessaspaces {

/// The wallpaper where the system tells of one. Elsewhere what was seen of the desktop between its windows, which is
/// kept from one run to the next; and while nothing was seen, a colour by the desktop's number. Nothing is read or
/// scaled on the main thread, and images come in exactly the size that was asked for. Asks the platform that is set
/// when it is made, from the next turn of the event loop on.
class DesktopBackgrounds final : public TileBackgrounds {
 public:
  explicit DesktopBackgrounds(std::filesystem::path cacheFolder = BackgroundCache::standardFolder());
  ~DesktopBackgrounds() override;

  TileBackground background(const std::string& displayUUID, SpaceID space, ImageSize pixels) override;
  void refresh() override;
  /// Waits for a picture of the screen, but not more than once in `learnPause` for each desktop, and only where the
  /// wallpaper is not known. Once the desktop has rested for a moment: what has just been shown may not be drawn yet.
  void learn(const std::string& displayUUID, SpaceID space) override;
  static constexpr auto learnPause = std::chrono::seconds(30);

 private:
  using Key = std::pair<std::string, SpaceID>;  // display and space
  struct Desktop {
    bool looked = false;
    Wallpaper wallpaper;
    /// Its file cannot be shown.
    bool broken = false;
    /// Of its display's, from 0.
    std::size_t number = 0;
    /// Under which its learned picture is kept.
    std::string cacheKey;
    /// How large its tile was when it was last asked for.
    ImageSize pixels;
    /// Pixels on the longer side that pictures of the whole display need to have; and had, when they were asked for.
    int wantedSide = 0;
    int lookedSide = 0;
    /// What was last shown, until something else is ready.
    std::optional<TileBackground> shown;
    std::optional<TimePoint> learned;
    /// Never the same again once it may have another wallpaper: a picture taken before does not count any more.
    std::uint64_t generation = 0;
  };

  void lookSoon();
  void look();
  void lookAtScreens();
  void lookAtSpaces();
  void lookAt(const Key& key, Desktop& desktop);
  void wallpaperChanged();
  void changeSoon();

  /// What there is to show, and has made what is missing for that.
  TileBackground current(const Key& key, Desktop& desktop);
  /// The first frame of an opening has no time to make pictures, and asks for them only then.
  void makeAhead();
  [[nodiscard]] std::optional<TileBackground> ofWallpaper(const Key& key, Desktop& desktop, ImageSize pixels);
  [[nodiscard]] std::optional<TileBackground> ofLearned(const Desktop& desktop, ImageSize pixels);
  [[nodiscard]] WallpaperPlace placeOf(const std::string& displayUUID) const;
  [[nodiscard]] int neededSide(const std::string& displayUUID, ImageSize pixels) const;

  void takeCached(LearnedBackgrounds cached);
  void keep(const std::string& key, LearnedBackground background, const ImageRef& picture);
  void beginGeneration(Desktop& desktop) { desktop.generation = ++generation_; }
  /// With the pictures that are not in the cache yet.
  void save(std::map<std::string, ImageRef> fresh);

  Dispatch& dispatch_;
  BackgroundCache cache_;
  SerialWork work_;
  RenderedBackgrounds rendered_;
  std::map<Key, Desktop> desktops_;
  std::map<std::string, WallpaperPlace> places_;
  LearnedBackgrounds learned_;
  std::uint64_t order_ = 0;
  std::uint64_t generation_ = 0;
  /// The wallpaper has changed since the last run's pictures were asked for.
  bool cacheOutdated_ = false;
  bool lookPending_ = false;
  std::optional<TimePoint> lastLook_;
  bool changePending_ = false;
  ScopedConnection wallpaperChanged_;
  ScopedConnection screensChanged_;
  std::shared_ptr<int> alive_ = std::make_shared<int>(0);  // queued work may outlive this
};

}  // namespace tessaspaces
