#pragma once

#include <cstdint>
#include <optional>

namespace tessaspaces {

/// What one of the product's key codes means on X11.
struct KeyMeaning {
  std::uint32_t keyCode = 0;
  /// The keysym of the key's unshifted legend on a US keyboard.
  std::uint32_t keysym = 0;
  /// Its place on a standard keyboard as the server numbers it (evdev), for layouts without that keysym.
  std::uint8_t standardKeycode = 0;
};

/// Absent for a key code that names no key on common keyboards.
[[nodiscard]] std::optional<KeyMeaning> meaningOf(std::uint32_t keyCode);

}  // namespace tessaspaces
