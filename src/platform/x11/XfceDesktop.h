#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/WindowCapture.h"

namespace tessaspaces {

/// What Xfce's desktop program paints: its settings as their file has them ("xfce4-desktop.xml"). The settings
/// service writes that a few seconds after a change. The file rather than the service: no program to start that may be
/// missing or hang, and it is there before the service runs.
class XfceBackdrops {
 public:
  /// Text that is not such a file gives one without settings.
  static XfceBackdrops parse(std::string_view xml);

  /// The wallpaper of a desktop, counted from 0, on the monitor with this RandR name; absent where nothing was set.
  [[nodiscard]] std::optional<WallpaperFile> wallpaper(std::string_view monitor, std::uint32_t desktop) const;

 private:
  using Properties = std::map<std::string, std::string, std::less<>>;
  [[nodiscard]] std::optional<std::string> value(std::string_view path) const;
  [[nodiscard]] int number(std::string_view path, int otherwise) const;
  [[nodiscard]] std::optional<std::uint32_t> color(std::string_view path) const;

  Properties properties_;  // "/backdrop/screen0/..." -> value; an array's values with a space after each
};

/// Where that file is: below $XDG_CONFIG_HOME, else ~/.config. Absent without a home.
[[nodiscard]] std::optional<std::string> xfceBackdropFile();

}  // namespace tessaspaces
