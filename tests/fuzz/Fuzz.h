#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/Fatal.h"

/// What libFuzzer, and the replay of the kept inputs, call with one input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace tessaspaces::fuzz {

/// Ends the program, which is how a finding is reported, unless the condition holds.
inline void require(bool condition, std::string_view what) {
  if (!condition) fatal(what);
}

[[nodiscard]] inline std::string_view asText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace tessaspaces::fuzz
