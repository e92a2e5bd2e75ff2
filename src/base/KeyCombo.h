#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>

namespace tessaspaces {

/// One key with the modifiers held down to it: the value that settings store and the hot-key registrar
/// takes. Key codes and mask bits are those of the Carbon event manager on every platform, so that one
/// configuration file means the same everywhere; a platform maps them to its own.
struct KeyCombo {
  static constexpr std::uint32_t command = 0x100;  // Super on X11
  static constexpr std::uint32_t shift = 0x200;
  static constexpr std::uint32_t option = 0x800;  // Alt on X11
  static constexpr std::uint32_t control = 0x1000;
  static constexpr std::uint32_t allModifiers = command | shift | option | control;

  static constexpr std::uint32_t noKeyCode = std::numeric_limits<std::uint32_t>::max();

  /// The arrows left, right, up, down.
  static constexpr std::array<std::uint32_t, 4> arrowKeyCodes{123, 124, 126, 125};
  /// The digit keys 1, 2, ... 9, 0.
  static constexpr std::array<std::uint32_t, 10> digitKeyCodes{18, 19, 20, 21, 23, 22, 26, 28, 25, 29};

  std::uint32_t keyCode = noKeyCode;
  std::uint32_t modifiers = 0;

  [[nodiscard]] static constexpr KeyCombo none() { return {}; }

  /// An empty combo is never registered: no key, or a key without any modifier.
  [[nodiscard]] bool isEmpty() const { return modifiers == 0 || keyCode == noKeyCode; }

  /// What the user reads, for instance "⌥⇧Space"; "—" for an empty combo.
  [[nodiscard]] std::string display() const;

  /// The symbols of a mask in the fixed order control, option, shift, command: "⌃⌥⇧⌘".
  [[nodiscard]] static std::string modifierSymbols(std::uint32_t mask);
  /// The name of a key this program uses; "?" for any other.
  [[nodiscard]] static std::string keyName(std::uint32_t keyCode);

  friend bool operator==(const KeyCombo&, const KeyCombo&) = default;
};

}  // namespace tessaspaces
