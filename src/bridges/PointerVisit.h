#pragma once

#include <optional>

#include "bridges/Desktops.h"
#include "bridges/OneHand.h"

namespace tessaspaces::GestureSwitch {

/// Has the pointer on a display that shows the target's desktops, for as long as it lives: swipes act on the display
/// under the pointer. Leaves the pointer alone where that is so anyway, as it is under a hot key.
class PointerVisit {
 public:
  PointerVisit() = default;
  /// Puts the pointer back, unless the user has moved it meanwhile.
  ~PointerVisit();
  PointerVisit(const PointerVisit&) = delete;
  PointerVisit& operator=(const PointerVisit&) = delete;

  /// False, with a line in the log, when the pointer is elsewhere and cannot be moved, or must not: since a button is
  /// held, which may be dragging something, or since another visit or a drag has it.
  bool goTo(const DesktopInfo& target);

 private:
  OneHand hand_;  // taken once the pointer has to be moved
  std::optional<Point> home_;
  std::optional<Point> away_;
};

}  // namespace tessaspaces::GestureSwitch
