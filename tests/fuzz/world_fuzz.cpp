#include "fuzz/Fuzz.h"
#include "platform/simulated/WorldText.h"

// The worlds that people write for --platform simulated.

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessaspaces;
  using fuzz::require;
  std::string error;
  const auto world = parseWorld(fuzz::asText(data, size), &error);
  require(world.has_value() == error.empty(), "neither a world nor an error, or both");
  if (!world) return 0;
  require(!world->displays.empty(), "a world without a display");
  for (const auto& display : world->displays) require(!display.spaces.empty(), "a display without a space");
  return 0;
}
