#pragma once

#include <cstdint>
#include <span>
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

/// Adds what _NET_WM_STRUT (four values) or _NET_WM_STRUT_PARTIAL (twelve) reserves along the root's edges; fewer
/// values reserve nothing.
void addStruts(std::span<const std::uint32_t> values, const PixelRect& root, std::vector<Strut>& struts);

/// `monitor` without what the struts reserve of it; a strut that would leave nothing is not believed.
[[nodiscard]] PixelRect withoutStruts(PixelRect monitor, const PixelRect& root, const std::vector<Strut>& struts);

/// Fills in the monitors' work areas. Two round trips.
void readWorkAreas(Connection& connection, std::vector<Monitor>& monitors, const PixelRect& root);

}  // namespace tessaspaces
