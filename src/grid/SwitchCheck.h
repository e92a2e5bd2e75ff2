#pragma once

#include "bridges/Desktops.h"

namespace tessaspaces {

/// Looks 1 s and, if need be, 2.5 s from now whether the target's display really stays on it, and logs what it sees.
/// Nothing is retried and nothing undone: this is for the person who finds out why a system takes a switch back. A
/// later switch of the same display ends the check. Main thread.
void scheduleSwitchCheck(const DesktopRef& target);

}  // namespace tessaspaces
