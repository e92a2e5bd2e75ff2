#include "platform/x11/X11Wallpapers.h"

#include <fstream>
#include <iterator>

#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

// Far above what the settings of many monitors take.
constexpr std::uintmax_t largestFile = 4 << 20;

}  // namespace

Wallpaper X11Wallpapers::wallpaper(const Place& place, int longestSide) {
  if (const auto file = ofXfce(place)) return *file;
  if (auto image = painted(place.area, longestSide)) return PaintedWallpaper{std::move(image)};
  return UnknownWallpaper{};
}

bool X11Wallpapers::isXfcePainting() {
  // The settings stay behind when the user changes to another desktop environment; its program does not.
  auto& channel = link_.channel();
  const auto cookie = channel.send<xcb_get_selection_owner>(link_.xfceDesktopSelection());
  const auto reply = channel.await<xcb_get_selection_owner_reply>(cookie);
  return reply && reply->owner != XCB_NONE;
}

std::optional<WallpaperFile> X11Wallpapers::ofXfce(const Place& place) {
  const auto file = xfceBackdropFile();
  if (!file || !place.desktop) return std::nullopt;
  std::error_code error;
  const auto time = std::filesystem::last_write_time(*file, error);
  if (error || !isXfcePainting()) return std::nullopt;
  if (time != readAt_) {
    readAt_ = time;
    backdrops_ = {};
    const auto size = std::filesystem::file_size(*file, error);
    std::ifstream stream(*file, std::ios::binary);
    if (!error && size <= largestFile && stream) {
      const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
      backdrops_ = XfceBackdrops::parse(text);
    }
  }
  return backdrops_.wallpaper(place.monitor, *place.desktop);
}

ImageRef X11Wallpapers::painted(const PixelRect& area, int longestSide) {
  const Key key{area.x, area.y, area.width, area.height, longestSide};
  if (const auto found = painted_.find(key); found != painted_.end()) return found->second;

  auto& channel = link_.channel();
  const auto rootCookie = askProperty(channel, link_.root(), link_.rootPixmap(), 1);
  const auto esetrootCookie = askProperty(channel, link_.root(), link_.esetrootPixmap(), 1);
  auto pixmap = firstItem(channel.await<xcb_get_property_reply>(rootCookie)).value_or(XCB_NONE);
  const auto esetroot = firstItem(channel.await<xcb_get_property_reply>(esetrootCookie)).value_or(XCB_NONE);
  if (pixmap == XCB_NONE) pixmap = esetroot;
  // That there is none holds until the properties change, too.
  auto& known = painted_[key];
  if (pixmap == XCB_NONE) return nullptr;
  // Programs leave the number behind when their pixmap goes with them.
  const auto geometry = channel.await<xcb_get_geometry_reply>(channel.send<xcb_get_geometry>(pixmap));
  if (!geometry || link_.formatOf(geometry->depth) == XCB_NONE) return nullptr;

  PictureSource source;
  source.drawable = pixmap;
  source.depth = geometry->depth;
  source.area = area;
  source.kind = PictureSource::Kind::tile;
  source.opaque = true;
  PictureBatch batch(link_, memory_);
  batch.add(source, fitted({area.width, area.height}, longestSide));
  batch.send();
  return known = batch.receive().front();
}

}  // namespace tessaspaces
