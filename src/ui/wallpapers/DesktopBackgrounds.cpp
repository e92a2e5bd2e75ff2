#include "ui/wallpapers/DesktopBackgrounds.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "bridges/Desktops.h"
#include "bridges/DisplaySpaces.h"
#include "platform/Platform.h"
#include "settings/Log.h"
#include "ui/wallpapers/LearnedPicture.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

// Several pictures that are ready one after the other are shown together.
constexpr auto changeDelay = 30ms;
// A program that paints the root again and again, a video, is not followed faster than this.
constexpr Duration lookPause = 300ms;
// Around a window, in device pixels: its shadow, and what scaling mixes.
constexpr double shadow = 16;
constexpr double mixed = 2;

/// Calm, and far enough apart to tell neighbouring desktops by.
constexpr std::array<std::uint32_t, 10> palette{0xFF3B4A6B, 0xFF2F5D62, 0xFF5B4B6E, 0xFF6B4F4F, 0xFF46604A,
                                                0xFF4C566A, 0xFF345C7D, 0xFF6A5A3F, 0xFF55476B, 0xFF3D5A50};

std::string identityOf(const Wallpaper& wallpaper) {
  if (const auto* file = std::get_if<WallpaperFile>(&wallpaper)) {
    return fmt::format("file {} {} {:06x} {:06x} {}", static_cast<int>(file->fit), static_cast<int>(file->colors),
                       file->firstColor, file->secondColor, file->path);
  }
  return std::holds_alternative<PaintedWallpaper>(wallpaper) ? "painted" : "unknown";
}

bool isSame(const Wallpaper& a, const Wallpaper& b) {
  const auto* painted = std::get_if<PaintedWallpaper>(&a);
  const auto* other = std::get_if<PaintedWallpaper>(&b);
  if (painted != nullptr && other != nullptr) return painted->image == other->image;
  return identityOf(a) == identityOf(b);
}

/// The user chose colours too, which show where the picture does not.
bool hasColors(const WallpaperFile& file) {
  const WallpaperFile unset;
  return file.firstColor != unset.firstColor || file.colors != unset.colors;
}

TileBackground shown(const PaintedBackground& background) {
  return {background.image, background.color};
}

std::vector<Rect> framesOf(const std::vector<WindowInfo>& windows) {
  std::vector<Rect> frames;
  for (const auto& window : windows) {
    if (!window.bounds) continue;
    const auto& bounds = *window.bounds;
    frames.push_back({bounds.x.value_or(0), bounds.y.value_or(0), bounds.width.value_or(0), bounds.height.value_or(0)});
  }
  return frames;
}

/// Where windows are in a picture of a display, with what they cast around them.
std::vector<Rect> coveredBy(const std::vector<Rect>& windows, const WallpaperPlace& place, const Rect& top,
                            const Image& picture) {
  std::vector<Rect> covered;
  const double across = picture.width / std::max(1.0, place.display.width);
  const double down = picture.height / std::max(1.0, place.display.height);
  for (const auto& window : windows) {
    const Rect frame{window.x - top.x, window.y - top.y, window.width, window.height};
    const auto around = frame.inset(-shadow / place.scale, -shadow / place.scale);
    covered.push_back(
        Rect{around.x * across, around.y * down, around.width * across, around.height * down}.inset(-mixed, -mixed));
  }
  return covered;
}

}  // namespace

DesktopBackgrounds::DesktopBackgrounds(std::filesystem::path cacheFolder)
    : dispatch_(platform().dispatch()),
      cache_(std::move(cacheFolder)),
      work_(dispatch_),
      rendered_(work_, cache_, [this] { changeSoon(); }) {
  wallpaperChanged_ = platform().windowCapture().wallpaperChanged.connect([this] { wallpaperChanged(); });
  screensChanged_ = platform().screens().changed.connect([this] { lookSoon(); });
  work_.add(
      [this, cache = cache_]() -> SerialWork::Report { return [this, cached = cache.read()] { takeCached(cached); }; });
}

DesktopBackgrounds::~DesktopBackgrounds() = default;

TileBackground DesktopBackgrounds::background(const std::string& displayUUID, SpaceID space, ImageSize pixels) {
  const Key key{displayUUID, space};
  auto& desktop = desktops_[key];
  desktop.pixels = pixels;
  desktop.wantedSide = std::max(desktop.wantedSide, neededSide(displayUUID, pixels));
  const bool tooSmall =
      std::holds_alternative<PaintedWallpaper>(desktop.wallpaper) && desktop.lookedSide < desktop.wantedSide;
  if (!desktop.looked || tooSmall) lookSoon();
  return current(key, desktop);
}

TileBackground DesktopBackgrounds::current(const Key& key, Desktop& desktop) {
  const auto pixels = desktop.pixels;
  auto found = ofWallpaper(key, desktop, pixels);
  if (!found) found = ofLearned(desktop, pixels);
  if (!found) return {nullptr, palette.at((desktop.looked ? desktop.number : key.second - 1) % palette.size())};
  if (!found->image && desktop.shown) return *desktop.shown;
  desktop.shown = found;
  return *found;
}

void DesktopBackgrounds::makeAhead() {
  rendered_.keepOnly([this] {
    for (auto& [key, desktop] : desktops_) {
      if (desktop.pixels.width > 0) current(key, desktop);
    }
  });
}

std::optional<TileBackground> DesktopBackgrounds::ofWallpaper(const Key& key, Desktop& desktop, ImageSize pixels) {
  if (const auto* painted = std::get_if<PaintedWallpaper>(&desktop.wallpaper)) {
    const auto* ready = rendered_.find({std::nullopt, {}, painted->image, std::nullopt}, pixels);
    return ready != nullptr ? shown(*ready) : TileBackground{};
  }
  const auto* file = std::get_if<WallpaperFile>(&desktop.wallpaper);
  if (file == nullptr) return std::nullopt;
  const auto* ready = rendered_.find({*file, placeOf(key.first), nullptr, std::nullopt}, pixels);
  if (ready == nullptr) return TileBackground{nullptr, file->firstColor};
  desktop.broken = !ready->complaint.empty();
  if (!desktop.broken) return shown(*ready);
  if (auto learned = ofLearned(desktop, pixels)) return learned;
  return hasColors(*file) ? std::optional(shown(*ready)) : std::nullopt;
}

std::optional<TileBackground> DesktopBackgrounds::ofLearned(const Desktop& desktop, ImageSize pixels) {
  const auto found = learned_.find(desktop.cacheKey);
  if (found == learned_.end()) return std::nullopt;
  const auto& [key, background] = *found;
  const auto* ready =
      rendered_.find({std::nullopt, {}, nullptr, LearnedSource{key, background.order, background.color}}, pixels);
  return ready != nullptr ? shown(*ready) : TileBackground{nullptr, background.color};
}

WallpaperPlace DesktopBackgrounds::placeOf(const std::string& displayUUID) const {
  const auto found = places_.find(displayUUID);
  return found != places_.end() ? found->second : WallpaperPlace{};
}

int DesktopBackgrounds::neededSide(const std::string& displayUUID, ImageSize pixels) const {
  const auto& display = placeOf(displayUUID).display;
  if (display.width < 1 || display.height < 1) return std::max(pixels.width, pixels.height);
  const double factor = std::max(pixels.width / display.width, pixels.height / display.height);
  return static_cast<int>(std::ceil(std::max(display.width, display.height) * factor));
}

void DesktopBackgrounds::refresh() {
  rendered_.refresh();
  lookSoon();
}

void DesktopBackgrounds::lookSoon() {
  if (std::exchange(lookPending_, true)) return;
  const Duration pause = lastLook_ ? *lastLook_ + lookPause - dispatch_.now() : Duration{};
  dispatch_.after(std::max(Duration{}, pause), [this, alive = std::weak_ptr(alive_)] {
    if (alive.lock()) look();
  });
}

void DesktopBackgrounds::look() {
  lookPending_ = false;
  lastLook_ = dispatch_.now();
  lookAtScreens();
  const auto reading = platform().windowServer().beginRead();
  lookAtSpaces();
  for (auto& [key, desktop] : desktops_) lookAt(key, desktop);
}

void DesktopBackgrounds::lookAtScreens() {
  std::map<std::string, WallpaperPlace> places;
  std::optional<Rect> all;
  for (const auto& screen : platform().screens().screens()) {
    if (!screen->uuid) continue;
    const auto& frame = screen->frame;
    const Rect turned{frame.x, -frame.maxY(), frame.width, frame.height};
    places[*screen->uuid] = {turned, {}, screen->scale};
    if (!all) all = turned;
    const Point corner{std::min(all->x, turned.x), std::min(all->y, turned.y)};
    all = Rect{corner.x, corner.y, std::max(all->maxX(), turned.maxX()) - corner.x,
               std::max(all->maxY(), turned.maxY()) - corner.y};
  }
  for (auto& [display, place] : places) place.allDisplays = *all;
  if (std::exchange(places_, std::move(places)) != places_) changeSoon();
}

void DesktopBackgrounds::lookAtSpaces() {
  const auto displays = platform().windowServer().copyManagedDisplaySpaces();
  if (!displays) return;
  std::set<Key> there;
  for (const auto& display : *displays) {
    std::size_t number = 0;
    for (const auto& space : display.spaces.value_or(std::vector<ManagedSpace>{})) {
      const auto id = Spaces::idOf(space);
      if (!id || space.type.value_or(0) != 0) continue;
      const Key key{display.displayIdentifier.value_or(""), *id};
      there.insert(key);
      const auto found = desktops_.find(key);
      if (found != desktops_.end()) {
        DesktopInfo info(key.second, key.first);
        info.spaceUUID = space.uuid.value_or("");
        found->second.cacheKey = key.first + "/" + info.nicknameKey();
        found->second.number = number;
      }
      ++number;
    }
  }
  std::erase_if(desktops_, [&](const auto& entry) { return !there.contains(entry.first); });
}

void DesktopBackgrounds::lookAt(const Key& key, Desktop& desktop) {
  // Before the first look the display's size was not known.
  desktop.wantedSide = std::max({desktop.wantedSide, neededSide(key.first, desktop.pixels), 1});
  auto wallpaper = platform().windowCapture().wallpaper(key.first, key.second, desktop.wantedSide);
  desktop.lookedSide = desktop.wantedSide;
  const bool isNew = !std::exchange(desktop.looked, true) || !isSame(desktop.wallpaper, wallpaper);
  desktop.wallpaper = std::move(wallpaper);
  // Before pictures can be taken every wallpaper is unknown; that is no change.
  const auto found = learned_.find(desktop.cacheKey);
  if (found != learned_.end() && !std::holds_alternative<UnknownWallpaper>(desktop.wallpaper) &&
      found->second.wallpaper != identityOf(desktop.wallpaper)) {
    learned_.erase(found);
    save({});
  }
  if (!isNew) return;
  beginGeneration(desktop);
  desktop.broken = false;
  changeSoon();
}

void DesktopBackgrounds::wallpaperChanged() {
  // What was seen of the desktops may be the old one, and nothing tells which of them have another now.
  if (!std::exchange(learned_, {}).empty()) save({});
  cacheOutdated_ = true;
  for (auto& [key, desktop] : desktops_) {
    desktop.learned.reset();
    beginGeneration(desktop);
  }
  lookSoon();
}

void DesktopBackgrounds::changeSoon() {
  if (std::exchange(changePending_, true)) return;
  dispatch_.after(changeDelay, [this, alive = std::weak_ptr(alive_)] {
    if (!alive.lock()) return;
    changePending_ = false;
    makeAhead();
    changed.emit();
  });
}

void DesktopBackgrounds::learn(const std::string& displayUUID, SpaceID space) {
  const Key key{displayUUID, space};
  if (!desktops_[key].looked) look();
  const auto found = desktops_.find(key);  // no more when there is no such desktop
  if (found == desktops_.end()) return;
  auto& desktop = found->second;
  if (!std::holds_alternative<UnknownWallpaper>(desktop.wallpaper) && !desktop.broken) return;
  const auto now = dispatch_.now();
  if (desktop.learned && now - *desktop.learned < learnPause) return;
  if (Spaces::currentSpaceID(displayUUID) != space) return;
  const auto place = placeOf(displayUUID);
  // A notification may come or go around the moment of the picture: what is there before or after is not believed.
  auto& capture = platform().windowCapture();
  auto frames = capture.unlistedWindows();
  const auto picture = capture.screenContent(displayUUID, BackgroundCache::longestSide);
  const auto windows = platform().windowList().copyWindowInfo(WindowListOption::onScreenWithoutDesktopElements);
  if (!picture || !windows) return;
  for (const auto& more : {framesOf(*windows), capture.unlistedWindows()}) {
    frames.insert(frames.end(), more.begin(), more.end());
  }
  desktop.learned = now;

  const auto screens = platform().screens().screens();
  const double primaryTop = screens.empty() ? 0 : -screens.front()->frame.maxY();
  const Rect top{place.display.x, place.display.y - primaryTop, 0, 0};
  const bool known = learned_.contains(desktop.cacheKey);
  work_.add([this, key, cache = cache_, generation = desktop.generation, picture, known,
             covered = coveredBy(frames, place, top, *picture), cacheKey = desktop.cacheKey,
             identity = identityOf(desktop.wallpaper)]() -> SerialWork::Report {
    const auto before = known ? cache.readPicture(cacheKey) : nullptr;
    auto learned = learnFrom(*picture, covered, before);
    if (!learned.picture || learned.picture == before) return {};
    return [this, key, generation, learned, cacheKey, identity] {
      const auto still = desktops_.find(key);
      if (still == desktops_.end() || still->second.generation != generation) return;
      keep(cacheKey, {identity, learned.color, 0}, learned.picture);
    };
  });
}

void DesktopBackgrounds::keep(const std::string& key, LearnedBackground background, const ImageRef& picture) {
  background.order = ++order_;
  learned_[key] = std::move(background);
  while (learned_.size() > BackgroundCache::mostEntries) {
    learned_.erase(std::min_element(learned_.begin(), learned_.end(),
                                    [](const auto& a, const auto& b) { return a.second.order < b.second.order; }));
  }
  save({{key, picture}});
  changeSoon();
}

void DesktopBackgrounds::takeCached(LearnedBackgrounds cached) {
  if (cacheOutdated_) return save({});  // nothing was learned yet: that is done after the cache was read
  for (const auto& [key, background] : cached) order_ = std::max(order_, background.order);
  learned_.merge(cached);  // what was learned in the meantime is newer
  lookSoon();
  changeSoon();
}

void DesktopBackgrounds::save(std::map<std::string, ImageRef> fresh) {
  work_.add([cache = cache_, backgrounds = learned_, fresh = std::move(fresh)]() -> SerialWork::Report {
    cache.write(backgrounds, fresh);
    return {};
  });
}

}  // namespace tessaspaces
