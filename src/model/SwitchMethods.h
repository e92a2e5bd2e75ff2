#pragma once

#include <memory>

#include "bridges/Desktops.h"
#include "model/SwitchRequests.h"
#include "platform/WindowServer.h"

/// The rungs of the ladder that a switch climbs: each tries one way to bring the display to the target, looks whether
/// it arrived, logs, and records its name as the last switch method where that is due. They block; off the main thread.
namespace tessaspaces::Spaces {

/// One switch under way.
struct SwitchAttempt {
  const DesktopRef& target;
  const SwitchRequest& request;
  /// What the display showed before.
  SpaceID active = 0;
  /// Holds together what is asked before the first method; a rung lets it go before it looks at the display.
  std::unique_ptr<ReadScope> reading;

  /// Overtaken, or the program is ending: whoever waits for the display gives up and draws no conclusion.
  [[nodiscard]] bool isOver() const;
};

enum class SwitchResult {
  arrived,
  refused,  // must not be tried now by any method
  failed,   // or over: the caller asks the attempt
};

/// The window server's own operation.
SwitchResult switchBridged(SwitchAttempt& attempt);
/// The swipes that a hand would make on a touchpad; goes on watching the display after it has arrived.
SwitchResult switchByGesture(SwitchAttempt& attempt);
/// The external window manager.
SwitchResult switchByYabai(SwitchAttempt& attempt);
/// Activating an application makes the system show a desktop with a window of it.
SwitchResult switchByActivation(SwitchAttempt& attempt);
/// The raw request, which leaves windows of the other desktop behind on some systems.
SwitchResult switchDegraded(SwitchAttempt& attempt);

}  // namespace tessaspaces::Spaces
