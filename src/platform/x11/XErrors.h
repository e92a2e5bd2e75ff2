#pragma once

#include <cstdint>
#include <string>

#include "platform/x11/Xcb.h"

namespace tessaspaces {

/// The numbers that the server gave the extensions; 0 where it lacks one.
struct ExtensionCodes {
  std::uint8_t randr = 0;
  std::uint8_t randrFirstEvent = 0;
  std::uint8_t randrFirstError = 0;
  std::uint8_t xkb = 0;
  std::uint8_t xkbEvent = 0;  // the one event code of XKB
  std::uint8_t xtest = 0;
  std::uint8_t composite = 0;
  std::uint8_t damage = 0;
  std::uint8_t damageFirstError = 0;
  std::uint8_t render = 0;
  std::uint8_t renderFirstError = 0;
};

/// Whether the error only says that what the request named is gone by now: windows and outputs may go at
/// any time, and the request that meets one of them has found that out in the normal way.
[[nodiscard]] bool isHarmless(const xcb_generic_error_t& error, const ExtensionCodes& extensions);

/// "BadWindow from GetProperty on 0x1c00003".
[[nodiscard]] std::string describe(const xcb_generic_error_t& error, const ExtensionCodes& extensions);

/// Ignores harmless errors and reports the others; with TESSASPACES_X_FATAL=1 in the environment (which
/// the tests set) one that is not harmless is a fatal stop. Any thread.
void handleError(const xcb_generic_error_t& error, const ExtensionCodes& extensions);

}  // namespace tessaspaces
