#include "harness/Input.h"

#include <xcb/xtest.h>

#include <array>
#include <cctype>
#include <string>

#include "harness/XServer.h"

namespace tessaspaces::harness {
namespace {

struct KeyName {
  std::uint32_t keyCode;
  std::uint32_t keysym;
};

// Written down here a second time on purpose: a fault in the program's own table must not hide itself.
constexpr std::array<KeyName, 16> keyNames{{{18, '1'},
                                            {19, '2'},
                                            {20, '3'},
                                            {21, '4'},
                                            {23, '5'},
                                            {22, '6'},
                                            {26, '7'},
                                            {28, '8'},
                                            {25, '9'},
                                            {29, '0'},
                                            {123, 0xFF51},  // Left
                                            {124, 0xFF53},  // Right
                                            {125, 0xFF54},  // Down
                                            {126, 0xFF52},  // Up
                                            {49, ' '},
                                            {5, 'g'}}};

struct ModifierName {
  std::uint32_t bit;
  std::uint32_t keysym;
  std::uint16_t mask;
};

constexpr std::array<ModifierName, 4> modifierNames{{{KeyCombo::control, 0xFFE3, XCB_MOD_MASK_CONTROL},
                                                     {KeyCombo::option, 0xFFE9, XCB_MOD_MASK_1},
                                                     {KeyCombo::shift, 0xFFE1, XCB_MOD_MASK_SHIFT},
                                                     {KeyCombo::command, 0xFFEB, XCB_MOD_MASK_4}}};

}  // namespace

Keymap::Keymap(const XConnection& connection) {
  const auto* setup = xcb_get_setup(connection.get());
  first_ = setup->min_keycode;
  const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto mapping = connection.reply(xcb_get_keyboard_mapping_reply,
                                        xcb_get_keyboard_mapping(connection.get(), setup->min_keycode, count));
  if (!mapping) throw Failure("the server has no keyboard");
  perKey_ = mapping->keysyms_per_keycode;
  const auto* keysyms = xcb_get_keyboard_mapping_keysyms(mapping.get());
  keysyms_.assign(keysyms, keysyms + xcb_get_keyboard_mapping_keysyms_length(mapping.get()));
}

xcb_keycode_t Keymap::keyFor(std::uint32_t keysym) const {
  // The lowest level first: a key that carries it unshifted is the better one.
  for (unsigned level = 0; level < perKey_; ++level) {
    for (std::size_t at = level; at < keysyms_.size(); at += perKey_) {
      if (keysyms_[at] == keysym) return static_cast<xcb_keycode_t>(first_ + at / perKey_);
    }
  }
  return 0;
}

xcb_keycode_t Keymap::keyFor(KeyCombo combo) const {
  for (const KeyName& name : keyNames) {
    if (name.keyCode == combo.keyCode) return keyFor(name.keysym);
  }
  return 0;
}

std::vector<xcb_keycode_t> Keymap::modifierKeys(std::uint32_t modifiers) const {
  std::vector<xcb_keycode_t> keys;
  for (const ModifierName& name : modifierNames) {
    if ((modifiers & name.bit) != 0) keys.push_back(keyFor(name.keysym));
  }
  return keys;
}

std::uint16_t Keymap::modifierMask(std::uint32_t modifiers) {
  std::uint16_t mask = 0;
  for (const ModifierName& name : modifierNames) {
    if ((modifiers & name.bit) != 0) mask = static_cast<std::uint16_t>(mask | name.mask);
  }
  return mask;
}

Keyboard::Keyboard(const XServer& server) : x_(server.display()) {
  if (!x_.reply(xcb_test_get_version_reply, xcb_test_get_version(x_.get(), 2, 2))) throw Failure("no XTEST");
}

void Keyboard::fake(std::uint8_t type, xcb_keycode_t key) const {
  xcb_test_fake_input(x_.get(), type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

void Keyboard::press(KeyCombo combo) const {
  const Keymap map = keymap();
  const xcb_keycode_t key = map.keyFor(combo);
  if (key == 0) throw Failure("this keyboard has no key for " + combo.display());
  const auto modifiers = map.modifierKeys(combo.modifiers);
  for (const xcb_keycode_t modifier : modifiers) fake(XCB_KEY_PRESS, modifier);
  fake(XCB_KEY_PRESS, key);
  fake(XCB_KEY_RELEASE, key);
  for (auto modifier = modifiers.rbegin(); modifier != modifiers.rend(); ++modifier) fake(XCB_KEY_RELEASE, *modifier);
  x_.roundTrip();
}

void Keyboard::hold(std::uint32_t modifiers) const {
  for (const xcb_keycode_t modifier : keymap().modifierKeys(modifiers)) fake(XCB_KEY_PRESS, modifier);
  x_.roundTrip();
}

void Keyboard::release(std::uint32_t modifiers) const {
  for (const xcb_keycode_t modifier : keymap().modifierKeys(modifiers)) fake(XCB_KEY_RELEASE, modifier);
  x_.roundTrip();
}

void Keyboard::tap(xcb_keycode_t key) const {
  fake(XCB_KEY_PRESS, key);
  fake(XCB_KEY_RELEASE, key);
  x_.flush();
}

void Keyboard::strike(std::uint32_t keysym) const {
  const xcb_keycode_t key = keymap().keyFor(keysym);
  if (key == 0) throw Failure("this keyboard has no such key");
  tap(key);
  x_.roundTrip();
}

void Keyboard::type(std::string_view text) const {
  const Keymap map = keymap();
  const xcb_keycode_t shift = map.keyFor(keys::shift);
  for (const char character : text) {
    const bool capital = std::isupper(static_cast<unsigned char>(character)) != 0;
    const int plain = std::tolower(static_cast<unsigned char>(character));
    const xcb_keycode_t key = map.keyFor(static_cast<std::uint32_t>(plain));
    if (key == 0) throw Failure("this keyboard has no key for a character of " + std::string(text));
    if (capital) fake(XCB_KEY_PRESS, shift);
    tap(key);
    if (capital) fake(XCB_KEY_RELEASE, shift);
  }
  x_.roundTrip();
}

void Keyboard::keyDown(KeyCombo combo) const {
  hold(combo.modifiers);
  fake(XCB_KEY_PRESS, keymap().keyFor(combo));
  x_.roundTrip();
}

void Keyboard::keyUp(KeyCombo combo) const {
  fake(XCB_KEY_RELEASE, keymap().keyFor(combo));
  release(combo.modifiers);
}

Pointer::Pointer(const XServer& server) : x_(server.display()) {}

void Pointer::moveTo(int x, int y) const {
  xcb_test_fake_input(x_.get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, x_.root(), static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 0);
  x_.roundTrip();
}

void Pointer::press(int button) const {
  xcb_test_fake_input(x_.get(), XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button), XCB_CURRENT_TIME, XCB_NONE, 0, 0,
                      0);
  x_.roundTrip();
}

void Pointer::release(int button) const {
  xcb_test_fake_input(x_.get(), XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button), XCB_CURRENT_TIME, XCB_NONE, 0, 0,
                      0);
  x_.roundTrip();
}

void Pointer::click(int button) const {
  press(button);
  release(button);
}

std::pair<int, int> Pointer::position() const {
  const auto found = x_.reply(xcb_query_pointer_reply, xcb_query_pointer(x_.get(), x_.root()));
  if (!found) throw Failure("the server has no pointer");
  return {found->root_x, found->root_y};
}

void Pointer::glideTo(int x, int y, int steps) const {
  const auto [fromX, fromY] = position();
  for (int step = 1; step <= steps; ++step) {
    moveTo(fromX + (x - fromX) * step / steps, fromY + (y - fromY) * step / steps);
  }
}

KeyHolder::KeyHolder(const XServer& server) : x_(server.display()) {}

bool KeyHolder::hold(KeyCombo combo) {
  return x_.errorOf(xcb_grab_key_checked(x_.get(), 1, x_.root(), Keymap::modifierMask(combo.modifiers),
                                         Keymap(x_).keyFor(combo), XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)) == 0;
}

void KeyHolder::letGo(KeyCombo combo) {
  xcb_ungrab_key(x_.get(), Keymap(x_).keyFor(combo), x_.root(), Keymap::modifierMask(combo.modifiers));
  x_.roundTrip();
}

bool KeyHolder::isTaken(KeyCombo combo) {
  // Nobody who takes it at this very moment finds it taken by the question.
  xcb_grab_server(x_.get());
  const bool free = hold(combo);
  if (free) letGo(combo);
  xcb_ungrab_server(x_.get());
  x_.roundTrip();
  return !free;
}

}  // namespace tessaspaces::harness
