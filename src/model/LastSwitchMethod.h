#pragma once

#include <string>

namespace tessaspaces::Spaces {

/// Notes the method of an attempt to switch; what `lastSwitchMethod` gives back. Any thread.
void setLastSwitchMethod(std::string method);

}  // namespace tessaspaces::Spaces
