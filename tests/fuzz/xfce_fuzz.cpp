#include "fuzz/Fuzz.h"
#include "platform/x11/XfceDesktop.h"

// The settings file of a desktop environment, as another program wrote it or half wrote it.

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessaspaces;
  using fuzz::require;
  const auto backdrops = XfceBackdrops::parse(fuzz::asText(data, size));
  for (const auto* monitor : {"HDMI-1", ""}) {
    for (const std::uint32_t desktop : {0U, 1U, 0xFFFFFFFFU}) {
      const auto file = backdrops.wallpaper(monitor, desktop);
      if (!file) continue;
      require(file->path.empty() || file->path.front() == '/', "a path that leads nowhere");
      require(file->firstColor >> 24U == 0xFF && file->secondColor >> 24U == 0xFF, "a colour to see through");
    }
  }
  return 0;
}
