#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Screens.h"

namespace tessaspaces {

/// What a monitor can be told apart by.
struct MonitorIdentity {
  /// Connector of a physical output ("DP-1"), or the name that somebody gave a monitor.
  std::string name;
  /// Empty when the output has none.
  std::vector<std::uint8_t> edid;
};

struct DisplayIdentity {
  DisplayID number = 0;
  /// In the form of a UUID, upper case.
  std::string uuid;
  friend bool operator==(const DisplayIdentity&, const DisplayIdentity&) = default;
};

/// The identities of the monitors of one layout, in their order. They depend on nothing but names and
/// EDIDs, so that they survive restarts and re-plugging. The text follows the EDID from connector to
/// connector, but where several monitors have the very same EDID the connector tells those apart.
[[nodiscard]] std::vector<DisplayIdentity> identify(std::span<const MonitorIdentity> monitors);

/// True for at least one whole block with the fixed header; some adapters deliver zeros.
[[nodiscard]] bool isPlausibleEdid(std::span<const std::uint8_t> edid);

/// Connectors of panels that are part of the machine: eDP, LVDS, DSI.
[[nodiscard]] bool isBuiltInConnector(std::string_view connector);

}  // namespace tessaspaces
