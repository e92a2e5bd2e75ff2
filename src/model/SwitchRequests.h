#pragma once

#include <cstdint>
#include <functional>
#include <memory>
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
  /// The same question as yes or no, to be asked even after this wish has ended.
  [[nodiscard]] std::function<bool()> overtaking() const;

  /// Asked later: whether, since this call, somebody has wished for something else than `target` on the display.
  static std::function<bool()> overtakingFromNow(std::string display, SpaceID target);

  /// Whether an earlier switch to another desktop of the display has not ended yet: what it shows now will not last.
  [[nodiscard]] bool followsUnfinished() const;

  /// One request at a time goes out to the system, so that the latest wish has the last word whichever thread comes
  /// to it first.
  class Turn {
   public:
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

   private:
    friend class SwitchRequest;
    Turn() = default;
  };
  /// Waits until no other wish is in the middle of a request. Null when this wish is overtaken by then, or the program
  /// is ending: it must not ask any more. Not to be held while the display is watched.
  [[nodiscard]] std::unique_ptr<Turn> takeTurn() const;

 private:
  struct Wish {
    std::string display;
    SpaceID target = 0;
    std::uint64_t number = 0;
  };
  static std::optional<Successor> successorOf(const Wish& wish);

  Wish wish_;
};

}  // namespace tessaspaces::Spaces
