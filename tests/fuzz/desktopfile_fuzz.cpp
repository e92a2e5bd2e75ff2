#include "fuzz/Fuzz.h"
#include "platform/x11/DesktopFiles.h"
#include "platform/x11/DisplayIdentity.h"

// What other programs install: desktop files. And what monitors say of themselves, which is as foreign.

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessaspaces;
  using fuzz::require;
  const auto text = fuzz::asText(data, size);
  if (const auto file = parseDesktopFile(text, {"de-AT", "cs"})) {
    require(!file->name.empty() && text.find(file->name) != std::string_view::npos, "a name from nowhere");
    require(text.find(file->startupWmClass) != std::string_view::npos, "a window class from nowhere");
    require(parseDesktopFile(text, {}).has_value() || text.find("Name[") != std::string_view::npos, "lost its name");
  }

  const std::span<const std::uint8_t> edid(data, size);
  (void)isPlausibleEdid(edid);
  const std::vector<std::uint8_t> bytes(edid.begin(), edid.end());
  const MonitorIdentity monitors[] = {{"DP-1", bytes}, {std::string(text), bytes}};
  const auto identities = identify(monitors);
  require(identities.size() == 2, "a monitor without an identity");
  require(text == "DP-1" || !(identities[0] == identities[1]), "two monitors with one identity");
  return 0;
}
