#include "platform/x11/DisplayIdentity.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tessaspaces {
namespace {

/// FNV-1a with a final mix, since the last bytes of connector names are all that differs in many layouts.
class Hash {
 public:
  explicit Hash(std::uint64_t seed) { add(std::span(reinterpret_cast<const std::uint8_t*>(&seed), sizeof seed)); }

  void add(std::span<const std::uint8_t> bytes) {
    for (const auto byte : bytes) state_ = (state_ ^ byte) * 0x100000001b3;
  }
  void add(std::string_view text) { add(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size())); }
  [[nodiscard]] std::uint64_t value() const {
    std::uint64_t x = state_;
    x = (x ^ (x >> 33)) * 0xff51afd7ed558ccd;
    x = (x ^ (x >> 33)) * 0xc4ceb9fe1a85ec53;
    return x ^ (x >> 33);
  }

 private:
  std::uint64_t state_ = 0xcbf29ce484222325;
};

std::string uuidOf(std::span<const std::uint8_t> edid, std::string_view connector) {
  std::array<std::uint64_t, 2> halves{};
  for (std::size_t i = 0; i < halves.size(); ++i) {
    Hash hash(i + 1);
    hash.add(edid);
    hash.add(connector);
    halves[i] = hash.value();
  }
  // The version (5, made from a name) and variant bits of RFC 4122.
  halves[0] = (halves[0] & ~std::uint64_t{0xf000}) | 0x5000;
  halves[1] = (halves[1] & ~(std::uint64_t{3} << 62)) | (std::uint64_t{2} << 62);
  return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:012X}", halves[0] >> 32, (halves[0] >> 16) & 0xffff,
                     halves[0] & 0xffff, halves[1] >> 48, halves[1] & 0xffffffffffff);
}

DisplayID numberOf(const MonitorIdentity& monitor) {
  Hash hash(3);
  hash.add(monitor.edid);
  hash.add(monitor.name);
  const auto number = static_cast<DisplayID>(hash.value());
  return number != 0 ? number : 1;  // 0 means "no display"
}

}  // namespace

std::vector<DisplayIdentity> identify(std::span<const MonitorIdentity> monitors) {
  std::vector<DisplayIdentity> identities;
  for (const auto& monitor : monitors) {
    const auto same =
        std::count_if(monitors.begin(), monitors.end(), [&](const auto& other) { return other.edid == monitor.edid; });
    const bool byEdid = !monitor.edid.empty() && same == 1;
    identities.push_back({numberOf(monitor), uuidOf(monitor.edid, byEdid ? std::string_view() : monitor.name)});
  }
  return identities;
}

bool isPlausibleEdid(std::span<const std::uint8_t> edid) {
  constexpr std::array<std::uint8_t, 8> header{0, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0};
  return edid.size() >= 128 && std::equal(header.begin(), header.end(), edid.begin());
}

bool isBuiltInConnector(std::string_view connector) {
  return connector.starts_with("eDP") || connector.starts_with("LVDS") || connector.starts_with("DSI");
}

}  // namespace tessaspaces
