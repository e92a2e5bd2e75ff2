#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

#include "bridges/Desktops.h"

namespace tessaspaces {

/// Windows that were dropped somewhere and are shown there already, while the system still has to follow. Main thread.
class ExpectedMoves {
 public:
  using Number = std::uint64_t;

  /// `window` as it will stand; a later one for the same window takes the place of an earlier one.
  Number add(const SpaceWindow& window, SpaceID from, SpaceID to);
  /// Nothing (any more) is expected of this window by that number: false when a later one took its place.
  bool remove(WindowID window, Number number);
  [[nodiscard]] bool isEmpty() const { return moves_.empty(); }

  /// Shows the windows where they are expected, before what is on the desktop already.
  void apply(SpacesSnapshot& snapshot) const;

 private:
  struct Move {
    Number number = 0;
    SpaceWindow window;
    SpaceID from = 0;
    SpaceID to = 0;
  };
  Number last_ = 0;
  std::map<WindowID, Move> moves_;
};

}  // namespace tessaspaces
