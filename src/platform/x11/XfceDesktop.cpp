#include "platform/x11/XfceDesktop.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>
#include <vector>

#include "platform/x11/Text.h"

namespace tessaspaces {
namespace {

constexpr std::size_t deepestNesting = 32;

/// The next "<...>" of the text without its brackets, taken off it with all before it. Comments count as one.
std::optional<std::string_view> takeTag(std::string_view& text) {
  constexpr std::string_view commentStart = "<!--";
  constexpr std::string_view commentEnd = "-->";
  const auto start = text.find('<');
  if (start == std::string_view::npos) return std::nullopt;
  text.remove_prefix(start);
  const auto end = text.starts_with(commentStart) ? text.find(commentEnd) : text.find('>');
  if (end == std::string_view::npos) return std::nullopt;
  const bool comment = text.starts_with(commentStart);
  const auto tag = comment ? std::string_view("!") : text.substr(1, end - 1);
  text.remove_prefix(end + (comment ? commentEnd.size() : 1));
  return tag;
}

std::string decoded(std::string_view text) {
  constexpr std::array<std::pair<std::string_view, char>, 5> entities{
      {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}}};
  std::string plain;
  while (!text.empty()) {
    const auto entity =
        std::find_if(entities.begin(), entities.end(), [&](const auto& each) { return text.starts_with(each.first); });
    plain += entity == entities.end() ? text.front() : entity->second;
    text.remove_prefix(entity == entities.end() ? 1 : entity->first.size());
  }
  return plain;
}

std::string attribute(std::string_view tag, std::string_view name) {
  const auto start = tag.find(fmt::format(" {}=\"", name));
  if (start == std::string_view::npos) return {};
  tag.remove_prefix(start + name.size() + 3);
  return decoded(tag.substr(0, tag.find('"')));
}

bool isElement(std::string_view tag, std::string_view name) {
  return tag.starts_with(name) && (tag.size() == name.size() || tag[name.size()] == ' ' || tag[name.size()] == '/');
}

}  // namespace

std::optional<std::string> xfceBackdropFile() {
  auto folder = environment("XDG_CONFIG_HOME");
  if (!folder) {
    folder = environment("HOME");
    if (!folder) return std::nullopt;
    *folder += "/.config";
  }
  return *folder + "/xfce4/xfconf/xfce-perchannel-xml/xfce4-desktop.xml";
}

XfceBackdrops XfceBackdrops::parse(std::string_view xml) {
  XfceBackdrops parsed;
  std::vector<std::string> path;
  while (auto tag = takeTag(xml)) {
    const bool empty = tag->ends_with('/');
    if (isElement(*tag, "property")) {
      if (path.size() == deepestNesting) return {};
      path.push_back((path.empty() ? "" : path.back()) + "/" + attribute(*tag, "name"));
      const auto value = attribute(*tag, "value");
      if (!value.empty()) parsed.properties_[path.back()] = value;
      if (empty) path.pop_back();
    } else if (isElement(*tag, "value") && !path.empty()) {
      parsed.properties_[path.back()] += attribute(*tag, "value") + " ";
    } else if (*tag == "/property" && !path.empty()) {
      path.pop_back();
    }
  }
  return parsed;
}

std::optional<std::string> XfceBackdrops::value(std::string_view path) const {
  const auto found = properties_.find(path);
  return found == properties_.end() ? std::nullopt : std::optional(found->second);
}

int XfceBackdrops::number(std::string_view path, int otherwise) const {
  const auto text = value(path).value_or("");
  int number = otherwise;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

std::optional<std::uint32_t> XfceBackdrops::color(std::string_view path) const {
  // Red, green, blue and alpha from 0 to 1, written in any country's way.
  auto text = value(path).value_or("");
  std::replace(text.begin(), text.end(), ',', '.');
  std::uint32_t color = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (int channel = 0; channel < 3; ++channel) {
    double part = 0;
    const auto [next, error] = std::from_chars(at, end, part);
    if (error != std::errc() || !(part >= 0 && part <= 1)) return std::nullopt;
    color = color << 8U | static_cast<std::uint32_t>(std::lround(part * 255));
    at = next;
    while (at != end && *at == ' ') ++at;
  }
  return 0xFF000000 | color;
}

std::optional<WallpaperFile> XfceBackdrops::wallpaper(std::string_view monitor, std::uint32_t desktop) const {
  // Unless told otherwise Xfce shows one desktop's wallpaper on all.
  if (value("/backdrop/single-workspace-mode").value_or("true") != "false") {
    desktop = static_cast<std::uint32_t>(std::max(0, number("/backdrop/single-workspace-number", 0)));
  }
  const auto base = fmt::format("/backdrop/screen0/monitor{}/workspace{}/", monitor, desktop);
  const auto at = [&](std::string_view name) { return base + std::string(name); };
  const auto path = value(at("last-image"));
  const auto first = color(at("rgba1"));
  if (!path && !first) return std::nullopt;

  constexpr std::array fits{WallpaperFit::none,   WallpaperFit::centered, WallpaperFit::tiled,  WallpaperFit::stretched,
                            WallpaperFit::scaled, WallpaperFit::zoomed,   WallpaperFit::spanned};
  constexpr int zoomed = 5;  // what Xfce takes where nothing is set
  WallpaperFile file;
  const auto style = static_cast<std::size_t>(number(at("image-style"), zoomed));
  file.fit = style < fits.size() ? fits[style] : WallpaperFit::zoomed;
  if (file.fit != WallpaperFit::none && path && path->starts_with('/')) file.path = *path;
  const int colors = number(at("color-style"), 0);
  file.colors = colors == 1   ? WallpaperColors::leftToRight
                : colors == 2 ? WallpaperColors::topToBottom
                              : WallpaperColors::solid;
  file.firstColor = first.value_or(file.firstColor);
  file.secondColor = color(at("rgba2")).value_or(file.firstColor);
  return file;
}

}  // namespace tessaspaces
