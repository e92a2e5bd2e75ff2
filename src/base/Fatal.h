#pragma once

#include <string_view>

namespace tessaspaces {

/// Prints "tessaspaces: " and the message to standard error, then aborts. For programming errors and for
/// a window server that cannot be used at all; what the user or the system can cause is survived instead.
[[noreturn]] void fatal(std::string_view message);

}  // namespace tessaspaces
