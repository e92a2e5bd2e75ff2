#pragma once

#include <vector>

#include "platform/x11/Connection.h"
#include "platform/x11/Monitors.h"

namespace tessaspaces {

/// Space that a panel reserves along one edge of the root window: how deep, and from where to where
/// (inclusive) along it. The layout of _NET_WM_STRUT_PARTIAL in its own words.
struct Strut {
  enum class Edge { left, right, top, bottom };
  Edge edge = Edge::left;
  int depth = 0;
  int start = 0;
  int end = 0;
};

/// `monitor` without what the struts reserve of it; a strut that would leave nothing is not believed.
[[nodiscard]] PixelRect withoutStruts(PixelRect monitor, const PixelRect& root, const std::vector<Strut>& struts);

/// Fills in the monitors' work areas. Two round trips.
void readWorkAreas(Connection& connection, std::vector<Monitor>& monitors, const PixelRect& root);

}  // namespace tessaspaces
