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

  /// `window` as it will stand; a later one for the same window takes the place of an earlier one. `leaves`: it moves
  /// away from whichever other desktop it is on; else it only gets another place.
  Number add(const SpaceWindow& window, SpaceID to, bool leaves);
  /// Nothing (any more) is expected of this window by that number: false when a later one took its place.
  bool remove(WindowID window, Number number);
  /// The window is on its way to another desktop.
  [[nodiscard]] bool isLeaving(WindowID window) const;

  /// Shows the windows where they are expected, before what is on the desktop already.
  void apply(SpacesSnapshot& snapshot) const;

 private:
  struct Move {
    Number number = 0;
    SpaceWindow window;
    SpaceID to = 0;
    bool leaves = false;
  };
  Number last_ = 0;
  std::map<WindowID, Move> moves_;
};

}  // namespace tessaspaces
