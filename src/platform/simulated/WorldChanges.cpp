#include "platform/simulated/WorldChanges.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace tessaspaces {

namespace {

bool sameSpace(const SimulatedSpace& a, const SimulatedSpace& b) {
  const auto fields = [](const SimulatedSpace& space) {
    const auto& reported = space.reported;
    return std::tie(space.id, reported.id64, reported.managedSpaceID, reported.type, reported.name, reported.uuid);
  };
  return fields(a) == fields(b);
}

bool sameSpaces(const SimulatedDisplay& a, const SimulatedDisplay& b) {
  return a.name == b.name && a.current == b.current &&
         std::equal(a.spaces.begin(), a.spaces.end(), b.spaces.begin(), b.spaces.end(), sameSpace);
}

bool sameScreen(const SimulatedDisplay& a, const SimulatedDisplay& b) {
  const auto fields = [](const SimulatedDisplay& display) {
    return std::tie(display.name, display.number, display.bounds, display.visibleBounds, display.scale, display.builtIn,
                    display.mirrors);
  };
  return fields(a) == fields(b);
}

auto windowPlaces(const WorldState& state) {
  std::vector<std::tuple<WindowID, bool, std::vector<SpaceID>>> places;
  places.reserve(state.windows.size());
  for (const auto& window : state.windows) places.emplace_back(window.id, window.sticky, window.spaces);
  std::sort(places.begin(), places.end());
  return places;
}

}  // namespace

bool spacesDiffer(const WorldState& before, const WorldState& after) {
  return !std::equal(before.displays.begin(), before.displays.end(), after.displays.begin(), after.displays.end(),
                     sameSpaces);
}

bool windowsDiffer(const WorldState& before, const WorldState& after) {
  return windowPlaces(before) != windowPlaces(after);
}

bool screensDiffer(const WorldState& before, const WorldState& after) {
  return !std::equal(before.displays.begin(), before.displays.end(), after.displays.begin(), after.displays.end(),
                     sameScreen);
}

}  // namespace tessaspaces
