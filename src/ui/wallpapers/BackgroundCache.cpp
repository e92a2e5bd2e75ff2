#include "ui/wallpapers/BackgroundCache.h"

#include <QBuffer>
#include <QImageReader>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <set>

#include "settings/AtomicFile.h"
#include "settings/ConfigFolder.h"
#include "settings/ConfigJson.h"
#include "settings/Log.h"
#include "ui/wallpapers/QtImages.h"

namespace tessaspaces {
namespace {

namespace fs = std::filesystem;

constexpr auto indexName = "colors.json";
constexpr std::string_view picturePrefix = "desktop-";
constexpr std::string_view pictureSuffix = ".png";
constexpr long long formatVersion = 1;

/// The same in every run of every version of the program.
std::uint64_t hashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return hash;
}

std::optional<std::uint32_t> colorFrom(const std::string& text) {
  constexpr std::size_t length = 7;  // "#rrggbb"
  std::uint32_t color = 0;
  const char* const end = text.data() + text.size();
  if (text.size() != length || text.front() != '#') return std::nullopt;
  const auto [next, error] = std::from_chars(text.data() + 1, end, color, 16);
  if (error != std::errc() || next != end) return std::nullopt;
  return 0xFF000000U | color;
}

std::optional<LearnedBackground> entryFrom(const Json& json) {
  if (!json.is_object()) return std::nullopt;
  const auto& object = json.get_ref<const JsonObject&>();
  const auto wallpaper = asString(lookup(object, "wallpaper"));
  const auto color = colorFrom(asString(lookup(object, "color")).value_or(""));
  const auto order = asInteger(lookup(object, "order"));
  if (!wallpaper || !color || !order || *order < 0) return std::nullopt;
  return LearnedBackground{*wallpaper, *color, static_cast<std::uint64_t>(*order)};
}

}  // namespace

fs::path BackgroundCache::standardFolder() {
  const char* cache = std::getenv("XDG_CACHE_HOME");
  const fs::path base = cache != nullptr ? cache : "";
  return (base.is_absolute() ? base : homeDirectory() / ".cache") / "tessaspaces";
}

fs::path BackgroundCache::pictureFile(std::string_view key) const {
  return folder_ / fmt::format("{}{:016x}{}", picturePrefix, hashOf(key), pictureSuffix);
}

LearnedBackgrounds BackgroundCache::read() const {
  const auto file = folder_ / indexName;
  const auto contents = readFile(file);
  if (contents.state == FileContents::State::missing) return {};
  const auto refuse = [&](std::string_view reason) {
    Log::warning("WALLPAPER: {} cannot be used, learning the desktops anew: {}", displayPath(file), reason);
    return LearnedBackgrounds{};
  };
  if (contents.state != FileContents::State::read) return refuse(contents.reason);
  const auto parsed = parseObject(contents.bytes);
  if (!parsed.object) return refuse(parsed.error);
  const auto* desktops = lookup(*parsed.object, "desktops");
  if (asInteger(lookup(*parsed.object, "version")) != formatVersion || desktops == nullptr || !desktops->is_object()) {
    return refuse("not of this version");
  }
  LearnedBackgrounds found;
  for (const auto& [key, json] : desktops->get_ref<const JsonObject&>()) {
    auto entry = entryFrom(json);
    if (!entry) {
      Log::warning("WALLPAPER: {} makes no sense about '{}'", displayPath(file), key);
    } else if (found.size() < mostEntries) {
      found.emplace(key, std::move(*entry));
    }
  }
  return found;
}

ImageRef BackgroundCache::readPicture(const std::string& key) const {
  const auto file = pictureFile(key);
  const auto contents = readFile(file);
  if (contents.state == FileContents::State::missing) return nullptr;
  auto bytes = QByteArray::fromRawData(contents.bytes.data(), static_cast<qsizetype>(contents.bytes.size()));
  QBuffer buffer(&bytes);
  QImageReader reader(&buffer, "png");
  const auto size = reader.size();
  // The size first: a few bytes may claim to be a picture of gigabytes.
  const bool small = size.isValid() && size.width() <= longestSide && size.height() <= longestSide;
  const auto picture = small ? reader.read() : QImage();
  if (!picture.isNull()) return copied(picture);
  Log::warning("WALLPAPER: {} is damaged, learning the desktop anew", displayPath(file));
  return nullptr;
}

void BackgroundCache::write(const LearnedBackgrounds& backgrounds,
                            const std::map<std::string, ImageRef>& pictures) const {
  std::error_code error;
  fs::create_directories(folder_, error);
  // The pictures first: what the index names is there.
  for (const auto& [key, picture] : pictures) writePicture(key, *picture);
  JsonObject desktops;
  for (const auto& [key, background] : backgrounds) {
    desktops[validUtf8(key)] = {{"wallpaper", validUtf8(background.wallpaper)},
                                {"color", fmt::format("#{:06x}", background.color & 0xFFFFFFU)},
                                {"order", background.order}};
  }
  replace(folder_ / indexName, serialise({{"version", formatVersion}, {"desktops", std::move(desktops)}}));
  removeOrphans(backgrounds);
}

void BackgroundCache::writePicture(const std::string& key, const Image& picture) const {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  if (!borrowed(picture).save(&buffer, "png")) return;
  replace(pictureFile(key), {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

void BackgroundCache::removeOrphans(const LearnedBackgrounds& backgrounds) const {
  std::set<fs::path> used;
  for (const auto& [key, background] : backgrounds) used.insert(pictureFile(key));
  std::error_code error;
  std::vector<fs::path> orphans;
  for (fs::directory_iterator each(folder_, error), end; !error && each != end; each.increment(error)) {
    const auto name = each->path().filename().string();
    // Nothing but what this has made.
    if (name.starts_with(picturePrefix) && name.ends_with(pictureSuffix) && !used.contains(each->path())) {
      orphans.push_back(each->path());
    }
  }
  for (const auto& orphan : orphans) fs::remove(orphan, error);
}

void BackgroundCache::replace(const fs::path& file, std::string_view bytes) const {
  auto temporary = file;
  temporary += ".new";
  const auto replacement = replaceFile(file, temporary, bytes);
  if (!replacement.stamp) {
    Log::warning("WALLPAPER: {} cannot be written: {}", displayPath(file), replacement.error);
  }
}

}  // namespace tessaspaces
