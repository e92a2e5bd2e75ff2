#include "ui/wallpapers/RenderedBackgrounds.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "settings/ConfigFolder.h"
#include "settings/Log.h"

namespace tessaspaces {

const PaintedBackground* RenderedBackgrounds::find(const BackgroundSource& source, ImageSize pixels) {
  Entry* other = nullptr;
  for (auto& entry : entries_) {
    if (entry.source != source) continue;
    if (entry.pixels == pixels) {
      entry.used = generation_;
      if (entry.background) return &*entry.background;
    } else if (entry.background) {
      other = &entry;
    }
  }
  const bool asked = std::any_of(entries_.begin(), entries_.end(),
                                 [&](const Entry& entry) { return entry.pixels == pixels && entry.source == source; });
  if (!asked) {
    entries_.push_back({source, pixels, std::nullopt, std::nullopt, generation_});
    render(entries_.back());
  }
  return other != nullptr ? &*other->background : nullptr;
}

void RenderedBackgrounds::render(const Entry& entry) {
  // The lifetime of this object is that of the work's owner: no report comes after that.
  work_.add([this, cache = cache_, source = entry.source, pixels = entry.pixels]() -> SerialWork::Report {
    auto rendering = std::make_shared<Rendering>();
    if (source.file) {
      // Before the picture is read: a change in between is seen the next time.
      rendering->stamp = stampOf(source.file->path);
      rendering->background = paintWallpaper(*source.file, source.place, pixels);
    } else if (source.picture) {
      rendering->background = coverWith(*source.picture, pixels);
    } else if (source.learned) {
      const auto picture = cache.readPicture(source.learned->key);
      rendering->background =
          picture ? coverWith(*picture, pixels) : PaintedBackground{nullptr, source.learned->color, {}};
    }
    return [this, source, pixels, rendering] { finished(source, pixels, *rendering); };
  });
}

void RenderedBackgrounds::finished(const BackgroundSource& source, ImageSize pixels, const Rendering& rendering) {
  if (source.file) complain(source.file->path, rendering.background.complaint);
  const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& each) { return each.pixels == pixels && each.source == source; });
  if (entry == entries_.end()) return;
  entry->background = rendering.background;
  entry->stamp = rendering.stamp;
  changed_();
}

void RenderedBackgrounds::complain(const std::string& path, const std::string& complaint) {
  auto& last = complaints_[path];
  if (std::exchange(last, complaint) == complaint || complaint.empty()) return;
  Log::warning("WALLPAPER: {} cannot be shown: {}", displayPath(path), complaint);
}

void RenderedBackgrounds::keepOnly(const std::function<void()>& ask) {
  ++generation_;
  ask();
  std::erase_if(entries_, [&](const Entry& entry) { return entry.used != generation_; });
}

void RenderedBackgrounds::refresh() {
  std::map<std::string, std::optional<FileStamp>> stamps;
  for (const auto& entry : entries_) {
    if (entry.source.file && entry.background) stamps[entry.source.file->path];
  }
  if (stamps.empty()) return;
  work_.add([this, stamps = std::move(stamps)]() -> SerialWork::Report {
    auto found = std::make_shared<std::map<std::string, std::optional<FileStamp>>>(stamps);
    for (auto& [path, stamp] : *found) stamp = stampOf(path);
    return [this, found] { compareStamps(*found); };
  });
}

void RenderedBackgrounds::compareStamps(const std::map<std::string, std::optional<FileStamp>>& stamps) {
  for (const auto& entry : entries_) {
    if (!entry.source.file || !entry.background) continue;
    const auto found = stamps.find(entry.source.file->path);
    if (found != stamps.end() && found->second != entry.stamp) render(entry);
  }
}

}  // namespace tessaspaces
