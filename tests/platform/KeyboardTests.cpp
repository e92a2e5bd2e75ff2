#include <gmock/gmock.h>

#include "platform/x11/KeyboardMap.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t superLeft = 0xffeb;
constexpr std::uint32_t altLeft = 0xffe9;
constexpr std::uint32_t numLock = 0xff7f;
constexpr std::uint32_t scrollLock = 0xff14;
constexpr std::uint32_t cyrillicA = 0x6c1;

/// Four columns per key, as servers with a second layout have.
class Keyboard {
 public:
  Keyboard() {
    map_.firstKeycode = 8;
    map_.keysymsPerKeycode = 4;
    map_.keysyms.assign(4 * 248, 0);
  }
  Keyboard& key(xcb_keycode_t keycode, std::vector<std::uint32_t> symbols) {
    std::copy(symbols.begin(), symbols.end(), map_.keysyms.begin() + 4 * (keycode - 8));
    return *this;
  }
  Keyboard& modifier(std::size_t index, std::vector<xcb_keycode_t> keycodes) {
    map_.modifiers[index] = std::move(keycodes);
    return *this;
  }
  operator KeyboardMap() const { return map_; }

 private:
  KeyboardMap map_;
};

TEST(KeyboardMap, FindsKeysOnOtherLayouts) {
  constexpr std::uint32_t one = 18;
  constexpr std::uint32_t g = 5;
  struct Case {
    const char* what;
    KeyboardMap map;
    std::uint32_t keyCode;
    std::vector<xcb_keycode_t> keycodes;
  };
  const std::vector<Case> cases{
      {"US", Keyboard().key(10, {'1', '!'}), one, {10}},
      {"French: digits with shift", Keyboard().key(10, {'&', '1'}).key(11, {0xe9, '2'}), one, {10}},
      {"unshifted elsewhere wins over shifted", Keyboard().key(10, {'&', '1'}).key(90, {'1'}), one, {90}},
      {"both keys with the legend", Keyboard().key(10, {'1'}).key(90, {'1'}), one, {10, 90}},
      {"AZERTY: by legend, not by place", Keyboard().key(24, {'a'}).key(38, {'q'}), 0, {24}},
      {"another script: by place", Keyboard().key(42, {cyrillicA}), g, {42}},
      {"another script with US behind it", Keyboard().key(42, {cyrillicA, 0, 'g', 'G'}), g, {42}},
      {"no such key on this keyboard", Keyboard().key(10, {'1'}), g, {}},
      {"no such key code", Keyboard().key(10, {'1'}), 4711, {}},
  };
  for (const auto& [what, map, keyCode, keycodes] : cases) EXPECT_EQ(map.keycodesOf(keyCode), keycodes) << what;
}

TEST(KeyboardMap, FindsTheModifiersThisKeyboardHas) {
  const KeyboardMap usual = Keyboard()
                                .key(64, {altLeft})
                                .key(133, {superLeft})
                                .key(77, {numLock})
                                .modifier(3, {64})
                                .modifier(6, {133})
                                .modifier(4, {77});
  EXPECT_EQ(usual.modifierBits(KeyCombo::allModifiers),
            XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4);
  EXPECT_THAT(usual.lockBits(), ElementsAre(XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2));

  const KeyboardMap odd = Keyboard()
                              .key(64, {altLeft})
                              .key(133, {0, superLeft})
                              .key(78, {scrollLock})
                              .modifier(5, {64})
                              .modifier(3, {0, 133})
                              .modifier(7, {78});
  EXPECT_EQ(odd.modifierBits(KeyCombo::option), XCB_MOD_MASK_3);
  EXPECT_EQ(odd.modifierBits(KeyCombo::command), XCB_MOD_MASK_1);
  EXPECT_THAT(odd.lockBits(), ElementsAre(XCB_MOD_MASK_LOCK, XCB_MOD_MASK_5));

  EXPECT_EQ(KeyboardMap().modifierBits(KeyCombo::option | KeyCombo::command), XCB_MOD_MASK_1 | XCB_MOD_MASK_4);
  EXPECT_THAT(KeyboardMap().keycodesOf(18), IsEmpty());
}

}  // namespace
}  // namespace tessaspaces
