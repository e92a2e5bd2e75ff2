#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Screens.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

/// A rectangle of the root window in pixels, origin at its top left.
struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// One monitor as the server describes it.
struct Monitor {
  /// The RandR monitor's name: the connector, or what `xrandr --setmonitor` was told.
  std::string name;
  /// The connector of its first output, empty when it has none.
  std::string connector;
  std::vector<std::uint8_t> edid;
  PixelRect area;
  /// `area` without panels and docks.
  PixelRect workArea;
  bool primary = false;
};

/// All monitors, the primary first, else in the server's order; never empty while the server answers.
/// A handful of round trips on the request connection.
[[nodiscard]] std::vector<Monitor> readMonitors(Connection& connection);
/// The scale that the user set for user interfaces ("Xft.dpi" over 96) as the resource manager tells it.
[[nodiscard]] double readScale(Connection& connection);

/// The value of "Xft.dpi" in the text of a RESOURCE_MANAGER property as a scale; 1 when there is none.
[[nodiscard]] double scaleFromResources(std::string_view resources);

/// The monitors as the seam's screens, in the same order. `y` is flipped about the first one's height.
[[nodiscard]] std::vector<Screen> toScreens(const std::vector<Monitor>& monitors, double scale);

}  // namespace tessaspaces
