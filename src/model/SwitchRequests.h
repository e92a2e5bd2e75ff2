#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/WindowServer.h"

namespace tessaspaces::Spaces {

/// One wish to switch a display, alive until the switch has ended. A later wish overtakes it: from then on it
/// must not touch the display any more, or a quick second key would be undone by the fall-backs of the first.
/// The order of construction counts, which is that of the keys. Any thread.
class SwitchRequest {
 public:
  SwitchRequest(std::string display, SpaceID target);
  ~SwitchRequest();
  SwitchRequest(const SwitchRequest&) = delete;
  SwitchRequest& operator=(const SwitchRequest&) = delete;

  struct Successor {
    std::string display;
    SpaceID target = 0;
  };
  /// The latest wish that is later than this one and wants something else of the same display, or of a display
  /// that shares its desktops.
  [[nodiscard]] std::optional<Successor> overtakenBy() const;

  /// Whether an earlier switch of the display has not ended yet: what it shows now will not last.
  [[nodiscard]] bool followsUnfinished() const;

 private:
  const std::string display_;
  const SpaceID target_;
  std::uint64_t number_ = 0;
};

}  // namespace tessaspaces::Spaces
