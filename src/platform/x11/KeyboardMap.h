#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "base/KeyCombo.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

/// The keyboard as the server maps it now: keycodes to keysyms, and keycodes to the eight modifiers.
struct KeyboardMap {
  xcb_keycode_t firstKeycode = 8;
  std::size_t keysymsPerKeycode = 0;
  /// keysymsPerKeycode for each keycode from the first; columns beyond a key's own are 0.
  std::vector<std::uint32_t> keysyms;
  /// The keycodes of each modifier: shift, lock, control, mod1 to mod5.
  std::array<std::vector<xcb_keycode_t>, 8> modifiers;

  friend bool operator==(const KeyboardMap&, const KeyboardMap&) = default;

  /// One round trip on the event connection.
  static KeyboardMap read(Channel& channel);
  /// The same on a connection that is not this platform's.
  static KeyboardMap read(xcb_connection_t* connection);

  /// The keycodes on which the product's key lies: those with its keysym unshifted, else the one with it on
  /// the lowest other level (digits on French and Czech keyboards), else the key at its standard place when
  /// this keyboard has a key there (letters on keyboards of other scripts). Empty when there is none.
  [[nodiscard]] std::vector<xcb_keycode_t> keycodesOf(std::uint32_t keyCode) const;
  /// The modifier bits of a combo's modifiers.
  [[nodiscard]] std::uint16_t modifierBits(std::uint32_t comboModifiers) const;
  /// The bits of Caps Lock, Num Lock and Scroll Lock, as far as they have one here.
  [[nodiscard]] std::vector<std::uint16_t> lockBits() const;

 private:
  [[nodiscard]] std::span<const std::uint32_t> keysymsOf(xcb_keycode_t keycode) const;
  [[nodiscard]] std::uint16_t bitOf(std::initializer_list<std::uint32_t> wanted) const;
};

}  // namespace tessaspaces
