#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/Image.h"

namespace tessaspaces {

/// What was learned of what lies behind a desktop's windows. Its picture is in its file alone: of all desktops together
/// they would take more memory than the rest of the program.
struct LearnedBackground {
  /// The wallpaper under which it was learned.
  std::string wallpaper;
  /// The average, 0xAARRGGBB, opaque.
  std::uint32_t color = 0xFF000000;
  /// The greater, the later it was learned.
  std::uint64_t order = 0;
  friend bool operator==(const LearnedBackground&, const LearnedBackground&) = default;
};
/// By display and desktop.
using LearnedBackgrounds = std::map<std::string, LearnedBackground>;

/// Keeps what was learned from one run to the next: "colors.json", and a PNG file for each picture beside it. Other
/// programs may have damaged them, or the user thrown them away: what cannot be used is logged, and replaced by the
/// next `write`. Any thread, one at a time.
class BackgroundCache {
 public:
  explicit BackgroundCache(std::filesystem::path folder) : folder_(std::move(folder)) {}

  /// "tessaspaces" in $XDG_CACHE_HOME, else in ~/.cache.
  [[nodiscard]] static std::filesystem::path standardFolder();

  [[nodiscard]] LearnedBackgrounds read() const;
  /// The picture learned of a desktop, transparent where windows have covered that so far. Null where its file was
  /// lost.
  [[nodiscard]] ImageRef readPicture(const std::string& key) const;
  /// Everything there is to keep, with the pictures that are not in their files yet. Files of no use any more are
  /// removed.
  void write(const LearnedBackgrounds& backgrounds, const std::map<std::string, ImageRef>& pictures) const;

  /// How many are kept, of all monitors that were ever plugged in.
  static constexpr std::size_t mostEntries = 32;
  /// Of a picture, in pixels.
  static constexpr int longestSide = 640;

 private:
  [[nodiscard]] std::filesystem::path pictureFile(std::string_view key) const;
  void writePicture(const std::string& key, const Image& picture) const;
  void removeOrphans(const LearnedBackgrounds& backgrounds) const;
  void replace(const std::filesystem::path& file, std::string_view bytes) const;

  std::filesystem::path folder_;
};

}  // namespace tessaspaces
