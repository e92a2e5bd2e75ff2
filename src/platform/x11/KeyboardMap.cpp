#include "platform/x11/KeyboardMap.h"

#include <algorithm>

#include "platform/x11/KeyTable.h"

namespace tessaspaces {
namespace {

constexpr std::uint32_t numLock = 0xff7f;
constexpr std::uint32_t scrollLock = 0xff14;
constexpr std::uint32_t superLeft = 0xffeb;
constexpr std::uint32_t superRight = 0xffec;
constexpr std::uint32_t altLeft = 0xffe9;
constexpr std::uint32_t altRight = 0xffea;
constexpr std::uint32_t metaLeft = 0xffe7;
constexpr std::uint32_t metaRight = 0xffe8;

std::uint8_t keycodeCount(const xcb_setup_t& setup) {
  return static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
}

/// From the server's answers; null where there was none.
KeyboardMap toMap(xcb_keycode_t first, const Reply<xcb_get_keyboard_mapping_reply_t>& keys,
                  const Reply<xcb_get_modifier_mapping_reply_t>& modifiers) {
  KeyboardMap map;
  map.firstKeycode = first;
  if (keys) {
    map.keysymsPerKeycode = keys->keysyms_per_keycode;
    const auto* keysyms = xcb_get_keyboard_mapping_keysyms(keys.get());
    map.keysyms.assign(keysyms, keysyms + xcb_get_keyboard_mapping_keysyms_length(keys.get()));
  }
  if (modifiers) {
    const auto* keycodes = xcb_get_modifier_mapping_keycodes(modifiers.get());
    for (auto& modifier : map.modifiers) {
      std::copy_if(keycodes, keycodes + modifiers->keycodes_per_modifier, std::back_inserter(modifier),
                   [](xcb_keycode_t keycode) { return keycode != 0; });
      keycodes += modifiers->keycodes_per_modifier;
    }
  }
  return map;
}

}  // namespace

KeyboardMap KeyboardMap::read(Channel& channel) {
  const auto* setup = xcb_get_setup(channel.get());
  const auto keys = channel.send<xcb_get_keyboard_mapping>(setup->min_keycode, keycodeCount(*setup));
  const auto modifierKeys = channel.send<xcb_get_modifier_mapping>();
  const auto keysReply = channel.await<xcb_get_keyboard_mapping_reply>(keys);
  return toMap(setup->min_keycode, keysReply, channel.await<xcb_get_modifier_mapping_reply>(modifierKeys));
}

KeyboardMap KeyboardMap::read(xcb_connection_t* connection) {
  const auto* setup = xcb_get_setup(connection);
  const auto keys = xcb_get_keyboard_mapping(connection, setup->min_keycode, keycodeCount(*setup));
  const auto modifierKeys = xcb_get_modifier_mapping(connection);
  const Reply<xcb_get_keyboard_mapping_reply_t> keysReply(xcb_get_keyboard_mapping_reply(connection, keys, nullptr));
  const Reply<xcb_get_modifier_mapping_reply_t> modifiersReply(
      xcb_get_modifier_mapping_reply(connection, modifierKeys, nullptr));
  return toMap(setup->min_keycode, keysReply, modifiersReply);
}

std::span<const std::uint32_t> KeyboardMap::keysymsOf(xcb_keycode_t keycode) const {
  if (keycode < firstKeycode) return {};
  const std::size_t start = static_cast<std::size_t>(keycode - firstKeycode) * keysymsPerKeycode;
  if (start + keysymsPerKeycode > keysyms.size()) return {};
  return std::span(keysyms).subspan(start, keysymsPerKeycode);
}

std::vector<xcb_keycode_t> KeyboardMap::keycodesOf(std::uint32_t keyCode) const {
  const auto meaning = meaningOf(keyCode);
  if (!meaning || keysymsPerKeycode == 0) return {};
  std::vector<xcb_keycode_t> found;
  const auto count = keysyms.size() / keysymsPerKeycode;
  for (std::size_t level = 0; level < keysymsPerKeycode && found.empty(); ++level) {
    for (std::size_t i = 0; i < count; ++i) {
      if (keysyms[i * keysymsPerKeycode + level] != meaning->keysym) continue;
      found.push_back(static_cast<xcb_keycode_t>(firstKeycode + i));
      // Two keys with the same legend are both that key; the same symbol deep in two keys is chance.
      if (level > 0) break;
    }
  }
  if (!found.empty()) return found;
  const auto standard = keysymsOf(meaning->standardKeycode);
  const bool exists = std::any_of(standard.begin(), standard.end(), [](auto keysym) { return keysym != 0; });
  if (exists) found.push_back(meaning->standardKeycode);
  return found;
}

std::uint16_t KeyboardMap::bitOf(std::initializer_list<std::uint32_t> wanted) const {
  for (std::size_t i = 0; i < modifiers.size(); ++i) {
    for (const auto keycode : modifiers[i]) {
      const auto symbols = keysymsOf(keycode);
      if (std::find_first_of(symbols.begin(), symbols.end(), wanted.begin(), wanted.end()) != symbols.end()) {
        return static_cast<std::uint16_t>(1U << i);
      }
    }
  }
  return 0;
}

std::uint16_t KeyboardMap::modifierBits(std::uint32_t comboModifiers) const {
  std::uint16_t bits = 0;
  if (comboModifiers & KeyCombo::shift) bits |= XCB_MOD_MASK_SHIFT;
  if (comboModifiers & KeyCombo::control) bits |= XCB_MOD_MASK_CONTROL;
  if (comboModifiers & KeyCombo::option) {
    const auto alt = bitOf({altLeft, altRight});
    const auto meta = alt != 0 ? alt : bitOf({metaLeft, metaRight});
    bits |= meta != 0 ? meta : std::uint16_t{XCB_MOD_MASK_1};
  }
  if (comboModifiers & KeyCombo::command) {
    const auto super = bitOf({superLeft, superRight});
    bits |= super != 0 ? super : std::uint16_t{XCB_MOD_MASK_4};
  }
  return bits;
}

std::vector<std::uint16_t> KeyboardMap::lockBits() const {
  std::vector<std::uint16_t> bits{XCB_MOD_MASK_LOCK};
  for (const auto lock : {numLock, scrollLock}) {
    const auto bit = bitOf({lock});
    if (bit != 0 && std::find(bits.begin(), bits.end(), bit) == bits.end()) bits.push_back(bit);
  }
  return bits;
}

}  // namespace tessaspaces
