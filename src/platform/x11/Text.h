#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessaspaces {

/// Takes the first line, without its end, off the text.
std::string_view takeLine(std::string_view& text);
/// Without white space at both ends.
[[nodiscard]] std::string_view trim(std::string_view text);
/// ASCII letters in lower case, other bytes as they are.
[[nodiscard]] std::string lowerCase(std::string_view text);
/// An environment variable; absent when unset or empty, which XDG and locale rules treat alike.
[[nodiscard]] std::optional<std::string> environment(const char* name);

}  // namespace tessaspaces
