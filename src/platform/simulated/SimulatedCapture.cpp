#include "platform/simulated/SimulatedCapture.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessaspaces {

namespace {

constexpr int titleBarHeight = 22;

/// `Limit` is what `fitted` takes.
template <class Limit>
ImageRef scaled(const ImageRef& image, const Limit& limit) {
  if (!image) return nullptr;
  const auto size = fitted({image->width, image->height}, limit);
  if (size == ImageSize{image->width, image->height}) return image;
  auto result = std::make_shared<Image>(Image{size.width, size.height, {}});
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const auto at =
          static_cast<std::size_t>(y * image->height / size.height) * static_cast<std::size_t>(image->width) +
          static_cast<std::size_t>(x * image->width / size.width);
      result->pixels.push_back(image->pixels[at]);
    }
  }
  return result;
}

template <class Limit>
ImageRef madeUp(const SimulatedWindow& window, const Limit& limit) {
  const auto bounds = window.reported.bounds.value_or(WindowBounds{});
  const auto side = [](std::optional<double> length) { return std::max(1, static_cast<int>(length.value_or(1))); };
  const ImageSize full{side(bounds.width), side(bounds.height)};
  const auto size = fitted(full, limit);
  // Neighbouring numbers get colours far from one another.
  const std::uint32_t body = 0xFF404040 | ((window.id * 0x9E3779B1U >> 8U) & 0xBFBFBFU);
  constexpr std::uint32_t darken = 0x7F7F7F;
  const std::uint32_t bar = 0xFF000000 | (body >> 1U & darken);
  auto image = std::make_shared<Image>(Image{size.width, size.height, {}});
  image->pixels.assign(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height), body);
  const auto barPixels = static_cast<std::ptrdiff_t>(titleBarHeight * size.height / full.height) * size.width;
  std::fill_n(image->pixels.begin(), std::min<std::ptrdiff_t>(barPixels, std::ssize(image->pixels)), bar);
  return image;
}

}  // namespace

bool SimulatedCapture::begin() {
  world_.ask(Operation::beginCapture);
  if (world_.faults().unavailable.contains(Operation::beginCapture)) return false;
  begun_ = true;
  notice();
  return true;
}

void SimulatedCapture::stop() {
  begun_ = false;
  windows_.clear();
  news_.clear();
}

void SimulatedCapture::setLimits(const PreviewLimits& limits) {
  if (std::exchange(limits_, limits) == limits) return;
  for (auto& [id, window] : windows_) {
    if (!window.visible) continue;
    window.stale = true;
    announce(id);
  }
}

void SimulatedCapture::notice() {
  if (!begun_) return;
  const auto state = world_.state();
  std::erase_if(windows_, [&](const auto& entry) {
    const bool gone = state->window(entry.first) == nullptr;
    if (gone) announce(entry.first);
    return gone;
  });
  for (const auto& window : state->windows) {
    const bool visible = state->isVisible(window) && !window.desktopElement;
    if (visible && windows_.try_emplace(window.id).second) announce(window.id);
    const auto found = windows_.find(window.id);
    if (found == windows_.end()) continue;
    auto& known = found->second;
    known.visible = visible;
    if (const auto drawn = drawn_.find(window.id); visible && drawn != drawn_.end() && drawn->second != known.shown) {
      known.shown = drawn->second;
      known.stale = true;
      announce(window.id);
    }
    if (!known.picture || !visible) capture(window.id, known);
  }
}

void SimulatedCapture::capture(WindowID id, Window& window) {
  if (!std::exchange(window.stale, false)) return;
  const auto state = world_.state();
  window.picture = window.shown ? scaled(window.shown, limits_) : madeUp(*state->window(id), limits_);
}

void SimulatedCapture::announce(WindowID window) {
  if (!news_.insert(window).second || news_.size() > 1) return;
  dispatch_.async([this] {
    const auto news = std::exchange(news_, {});
    if (!news.empty()) previewsChanged.emit({news.begin(), news.end()});
  });
}

ImageRef SimulatedCapture::preview(WindowID window) {
  const auto found = windows_.find(window);
  return found == windows_.end() ? nullptr : found->second.picture;
}

std::vector<ImageRef> SimulatedCapture::previews(std::span<const WindowID> windows) {
  std::vector<ImageRef> pictures(windows.size());
  if (!world_.ask(Operation::previews, std::to_string(windows.size()))) return pictures;
  notice();
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const auto found = windows_.find(windows[i]);
    if (found == windows_.end()) continue;
    capture(found->first, found->second);
    pictures[i] = found->second.picture;
  }
  return pictures;
}

Wallpaper SimulatedCapture::wallpaper(std::string_view display, SpaceID space, int longestSide) {
  const std::string name(display);
  if (!world_.ask(Operation::wallpaper, name + ", " + std::to_string(space)) || !begun_ ||
      !world_.state()->display(display)) {
    return UnknownWallpaper{};
  }
  for (const SpaceID each : {space, SpaceID{0}}) {
    const auto found = wallpapers_.find({name, each});
    if (found == wallpapers_.end()) continue;
    if (const auto* painted = std::get_if<PaintedWallpaper>(&found->second)) {
      auto& known = scaledWallpapers_[{painted->image, longestSide}];
      if (!known) known = scaled(painted->image, longestSide);
      return PaintedWallpaper{known};
    }
    return found->second;
  }
  return UnknownWallpaper{};
}

ImageRef SimulatedCapture::screenContent(std::string_view display, int longestSide) {
  const auto state = world_.state();
  const auto* known = state->display(display);
  if (!world_.ask(Operation::screenContent, display) || !begun_ || !known) return nullptr;
  if (const auto found = screens_.find(display); found != screens_.end()) return scaled(found->second, longestSide);
  SimulatedWindow blank;
  blank.id = static_cast<WindowID>(known->current);
  blank.reported.bounds = WindowBounds{0, 0, known->bounds.width * known->scale, known->bounds.height * known->scale};
  return madeUp(blank, longestSide);
}

void SimulatedCapture::draw(WindowID window, ImageRef content) {
  drawn_[window] = std::move(content);
  notice();
}

void SimulatedCapture::setWallpaper(const std::string& display, SpaceID space, Wallpaper wallpaper) {
  wallpapers_[{display, space}] = std::move(wallpaper);
  scaledWallpapers_.clear();
  if (!begun_) return;
  dispatch_.async([this] { wallpaperChanged.emit(); });
}

void SimulatedCapture::setScreenContent(const std::string& display, ImageRef content) {
  screens_[display] = std::move(content);
}

}  // namespace tessaspaces
