#pragma once

#include <string_view>
#include <utility>

#include "base/KeyCombo.h"
#include "harness/XConnection.h"

namespace tessaspaces::harness {

class XServer;

/// The keyboard of a server as it is mapped right now.
class Keymap {
 public:
  explicit Keymap(const XConnection& connection);

  /// The key (keycode) that carries a keysym, 0 when none does. Where several do, the first one.
  [[nodiscard]] xcb_keycode_t keyFor(std::uint32_t keysym) const;
  /// The same for one of the product's key codes, and for each modifier of a mask.
  [[nodiscard]] xcb_keycode_t keyFor(KeyCombo combo) const;
  [[nodiscard]] std::vector<xcb_keycode_t> modifierKeys(std::uint32_t modifiers) const;
  /// The X modifier mask that those keys make.
  [[nodiscard]] static std::uint16_t modifierMask(std::uint32_t modifiers);

 private:
  xcb_keycode_t first_ = 0;
  unsigned perKey_ = 0;
  std::vector<std::uint32_t> keysyms_;
};

/// Keysyms of keys that have no code of their own in a KeyCombo.
namespace keys {
inline constexpr std::uint32_t escape = 0xFF1B;
inline constexpr std::uint32_t enter = 0xFF0D;
inline constexpr std::uint32_t tab = 0xFF09;
inline constexpr std::uint32_t backspace = 0xFF08;
inline constexpr std::uint32_t remove = 0xFFFF;
inline constexpr std::uint32_t insert = 0xFF63;
inline constexpr std::uint32_t end = 0xFF57;
inline constexpr std::uint32_t left = 0xFF51;
inline constexpr std::uint32_t up = 0xFF52;
inline constexpr std::uint32_t right = 0xFF53;
inline constexpr std::uint32_t down = 0xFF54;
inline constexpr std::uint32_t f2 = 0xFFBF;
inline constexpr std::uint32_t shift = 0xFFE1;
}  // namespace keys

/// Real key presses, made by the server through XTEST: they run into grabs as a person's would.
class Keyboard {
 public:
  explicit Keyboard(const XServer& server);

  /// Modifiers down, the key down and up, modifiers up, by the mapping in force; the server has done all of it
  /// when this returns.
  void press(KeyCombo combo) const;
  /// The parts of a press, for measuring only the key itself: keep modifiers down, tap, let go.
  void hold(std::uint32_t modifiers) const;
  void release(std::uint32_t modifiers) const;
  void tap(xcb_keycode_t key) const;  // sent, not waited for
  /// A key by its keysym, with whatever modifiers are held: 0xFF1B is Escape.
  void strike(std::uint32_t keysym) const;
  /// Types letters, digits and spaces, capitals with Shift.
  void type(std::string_view text) const;
  /// Holds a combo down, and lets it go: the server repeats the key in between where the keyboard does.
  void keyDown(KeyCombo combo) const;
  void keyUp(KeyCombo combo) const;

  [[nodiscard]] Keymap keymap() const { return Keymap(x_); }
  [[nodiscard]] const XConnection& connection() const { return x_; }

 private:
  void fake(std::uint8_t type, xcb_keycode_t key) const;
  XConnection x_;
};

/// The pointer, moved and clicked through XTEST. Coordinates from the top left of the screen.
class Pointer {
 public:
  explicit Pointer(const XServer& server);
  void moveTo(int x, int y) const;
  void click(int button = 1) const;
  void press(int button = 1) const;
  void release(int button = 1) const;
  /// Moves there in a number of steps, as a hand does.
  void glideTo(int x, int y, int steps = 8) const;
  [[nodiscard]] std::pair<int, int> position() const;

 private:
  XConnection x_;
};

/// Another program that takes keys for itself.
class KeyHolder {
 public:
  explicit KeyHolder(const XServer& server);
  /// Grabs the combo; false when somebody else has it already. Held until `letGo` or this object's end.
  bool hold(KeyCombo combo);
  void letGo(KeyCombo combo);
  /// Whether somebody else holds it, left as found; gets in nobody's way.
  [[nodiscard]] bool isTaken(KeyCombo combo);

 private:
  XConnection x_;
};

}  // namespace tessaspaces::harness
