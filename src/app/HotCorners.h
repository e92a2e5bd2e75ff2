#pragma once

#include <optional>

#include "base/Geometry.h"
#include "settings/Enums.h"

namespace tessaspaces {

/// Which corner of the primary screen the pointer has entered. Looks at nothing itself: whoever polls the
/// pointer hands each position in.
class HotCorners {
 public:
  /// How far a corner reaches from both of its edges, in points, itself included.
  static constexpr double reach = 14;
  /// A pointer this far outside the frame still counts: at the far edges it may be reported just beyond.
  static constexpr double margin = 1;

  /// The corner that the position lies in; absent for none. Both with a bottom-left origin.
  [[nodiscard]] static std::optional<HotCorner> classify(Point pointer, const Rect& screen);

  /// One look at the pointer: the corner if it has been entered since the last look. Staying in a corner
  /// is no entry; going straight from one to another is.
  std::optional<HotCorner> tick(Point pointer, const Rect& screen);

  /// In place of `tick` while no corner has an action and nobody looks. The first look afterwards only
  /// notes where the pointer is: resting in a corner that just got its action is no entry.
  void skip() { known_ = false; }

 private:
  std::optional<HotCorner> insideLastTick_;
  bool known_ = true;
};

}  // namespace tessaspaces
