#pragma once

#include <string>
#include <string_view>

namespace tessaspaces {

/// The UTF-8 text without the white space and line ends, those of Unicode included, at its two ends.
[[nodiscard]] std::string_view trimmedWhiteSpace(std::string_view text);

/// A new random UUID in upper case, 8-4-4-4-12 digits.
[[nodiscard]] std::string randomUUID();

}  // namespace tessaspaces
