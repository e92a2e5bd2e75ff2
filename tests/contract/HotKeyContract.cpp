#include "contract/ContractTest.h"

namespace tessaspaces::contract {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t signature = 0x50535452;  // 'PSTR'
constexpr KeyCombo right{124, KeyCombo::control | KeyCombo::option};
constexpr KeyCombo left{123, KeyCombo::control | KeyCombo::option};
constexpr KeyCombo shiftedRight{124, KeyCombo::control | KeyCombo::option | KeyCombo::shift};
constexpr KeyCombo space{49, KeyCombo::option | KeyCombo::shift};

}  // namespace

TEST_P(Contract, APressArrivesWithItsIdAndOnlyWhileRegistered) {
  start();
  auto& keys = platform().hotKeys();
  std::vector<std::uint32_t> pressed;
  keys.setPressHandler([&](HotKeyID id) {
    EXPECT_EQ(id.signature, signature);
    pressed.push_back(id.id);
  });
  std::vector<HotKeyHandle> handles;
  std::uint32_t id = 7;
  for (const auto combo : {right, left, space}) {
    const auto registration = keys.registerHotKey(combo, {signature, id++});
    EXPECT_EQ(registration.status, HotKeyRegistrar::noError) << combo.display();
    ASSERT_TRUE(registration.handle.has_value()) << combo.display();
    handles.push_back(*registration.handle);
  }
  driver->pressKey(shiftedRight);  // another combo on the same key
  driver->pressKey(right);
  driver->pressKey(space);
  driver->pressKey(left);
  EXPECT_TRUE(driver->until([&] { return pressed.size() >= 3; }));
  EXPECT_THAT(pressed, ElementsAre(7, 9, 8));

  keys.unregisterHotKey(handles[1]);
  keys.unregisterHotKey(handles[1]);  // twice does no harm
  pressed.clear();
  driver->pressKey(left);
  driver->pressKey(right);
  EXPECT_TRUE(driver->until([&] { return !pressed.empty(); }));
  EXPECT_THAT(pressed, ElementsAre(7));
}

TEST_P(Contract, AKeyBelongsToOneHolder) {
  start();
  auto& keys = platform().hotKeys();
  std::vector<std::uint32_t> pressed;
  keys.setPressHandler([&](HotKeyID id) { pressed.push_back(id.id); });
  driver->takeKey(left);
  const auto taken = keys.registerHotKey(left, {signature, 1});
  EXPECT_NE(taken.status, HotKeyRegistrar::noError) << "another program has it";
  EXPECT_FALSE(taken.handle.has_value());

  const auto first = keys.registerHotKey(right, {signature, 2});
  EXPECT_EQ(first.status, HotKeyRegistrar::noError);
  const auto again = keys.registerHotKey(right, {signature, 3});
  EXPECT_NE(again.status, HotKeyRegistrar::noError) << "we have it ourselves";
  EXPECT_FALSE(again.handle.has_value());

  driver->pressKey(left);
  driver->pressKey(right);
  EXPECT_TRUE(driver->until([&] { return !pressed.empty(); }));
  EXPECT_THAT(pressed, ElementsAre(2)) << "the first keeps working, the other's is not ours";

  driver->giveKeyBack(left);
  EXPECT_EQ(keys.registerHotKey(left, {signature, 4}).status, HotKeyRegistrar::noError);
  keys.unregisterHotKey(*first.handle);
  EXPECT_EQ(keys.registerHotKey(right, {signature, 5}).status, HotKeyRegistrar::noError);
  pressed.clear();
  driver->pressKey(left);
  driver->pressKey(right);
  EXPECT_TRUE(driver->until([&] { return pressed.size() >= 2; }));
  EXPECT_THAT(pressed, ElementsAre(4, 5));
}

TEST_P(Contract, TheHandlerMayRegisterAndUnregister) {
  start();
  auto& keys = platform().hotKeys();
  std::optional<HotKeyHandle> handle;
  int presses = 0;
  keys.setPressHandler([&](HotKeyID) {
    ++presses;
    keys.unregisterHotKey(*handle);
    handle = keys.registerHotKey(presses == 1 ? left : right, {signature, 2}).handle;
  });
  handle = keys.registerHotKey(right, {signature, 1}).handle;
  ASSERT_TRUE(handle.has_value());
  driver->pressKey(right);
  EXPECT_TRUE(driver->until([&] { return presses == 1; }));
  driver->pressKey(right);  // not ours any more
  driver->pressKey(left);
  EXPECT_TRUE(driver->until([&] { return presses == 2; }));
  driver->pressKey(right);
  EXPECT_TRUE(driver->until([&] { return presses == 3; }));
}

}  // namespace tessaspaces::contract
