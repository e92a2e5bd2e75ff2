// What the X11 platform promises beyond the contract, under a window manager of the usual kind.
#include <xcb/xinput.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <thread>

#include "contract/ContractTest.h"
#include "contract/X11Driver.h"
#include "harness/XConnection.h"
#include "platform/x11/X11Platform.h"
#include "platform/x11/Xcb.h"

namespace tessaspaces::contract {

namespace {

/// The settings of the server's input devices, as a settings program changes them.
class InputSettings {
 public:
  /// The pointers that are no masters.
  std::vector<xcb_input_device_id_t> pointers() {
    const Reply<xcb_input_xi_query_device_reply_t> reply(
        xcb_input_xi_query_device_reply(x_.get(), xcb_input_xi_query_device(x_.get(), XCB_INPUT_DEVICE_ALL), nullptr));
    std::vector<xcb_input_device_id_t> ids;
    if (!reply) return ids;
    for (auto each = xcb_input_xi_query_device_infos_iterator(reply.get()); each.rem > 0;
         xcb_input_xi_device_info_next(&each)) {
      if (each.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_POINTER) ids.push_back(each.data->deviceid);
    }
    return ids;
  }

  void set(xcb_input_device_id_t device, const std::string& name, bool value) {
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        x_.get(), xcb_intern_atom(x_.get(), 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    ASSERT_TRUE(atom);
    const std::array<std::uint8_t, 4> data{static_cast<std::uint8_t>(value), 0, 0, 0};
    const auto cookie = xcb_input_xi_change_property_checked(x_.get(), device, XCB_PROP_MODE_REPLACE, 8, atom->atom,
                                                             XCB_ATOM_INTEGER, 1, data.data());
    ASSERT_EQ(ErrorRef(xcb_request_check(x_.get(), cookie)), nullptr);
  }

 private:
  XcbConnectionRef x_{xcb_connect(nullptr, nullptr)};
};

}  // namespace

class X11Contract : public Contract {
 protected:
  X11Platform& x11() { return static_cast<X11Platform&>(platform()); }
};

TEST_P(X11Contract, AClientThatNamesNoProcessIsAnApplicationToo) {
  start();
  const auto named = driver->open({.title = "named", .pid = 5001});
  const auto first = driver->open({.title = "first", .pid = 0});
  const auto second = driver->open({.title = "second", .pid = 0});
  for (const auto window : {first, named, second}) {
    driver->focus(window);
    // As the model finds the focused window: the foremost one of the frontmost application.
    EXPECT_TRUE(driver->until([&] {
      const auto reading = server().beginRead();
      const auto front = platform().applications().frontmost();
      const auto list =
          platform().windowList().copyWindowInfo(WindowListOption::onScreenWithoutDesktopElements).value();
      const auto found = std::find_if(list.begin(), list.end(),
                                      [&](const auto& each) { return front && each.ownerPid == front->pid; });
      return found != list.end() && found->number == window;
    })) << info(window)->name.value_or("");
  }
  const auto owner = info(first)->ownerPid;
  ASSERT_TRUE(owner.has_value());
  EXPECT_LT(*owner, 0) << "no process has this number";
  EXPECT_EQ(info(second)->ownerPid, owner);
  EXPECT_EQ(info(named)->ownerPid, 5001);
  EXPECT_TRUE(platform().applications().running(*owner).has_value());
}

TEST_P(X11Contract, EachPressOfABurstCountsWhereThePointerWas) {
  start();
  constexpr KeyCombo combo{124, KeyCombo::control | KeyCombo::option};
  std::vector<double> columns;
  platform().hotKeys().setPressHandler(
      [&](HotKeyID) { platform().dispatch().async([&] { columns.push_back(platform().screens().pointer().x); }); });
  ASSERT_TRUE(platform().hotKeys().registerHotKey(combo, {1, 1}).handle.has_value());
  for (const int x : {100, 200, 300}) {
    driver->movePointer(x, 50);
    driver->pressKey(combo);
  }
  driver->movePointer(400, 50);
  EXPECT_TRUE(driver->until([&] { return columns.size() == 3; }));
  EXPECT_THAT(columns, testing::ElementsAre(100, 200, 300));
  driver->settle();
  EXPECT_EQ(platform().screens().pointer().x, 400) << "nothing of them lasts";
}

TEST_P(X11Contract, TheKeyboardCanBeTakenWhileAHotKeyIsHeldDown) {
  start();
  const XcbConnectionRef other(xcb_connect(nullptr, nullptr));
  const auto root = xcb_setup_roots_iterator(xcb_get_setup(other.get())).data->root;
  const auto take = [&] {
    const Reply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
        other.get(),
        xcb_grab_keyboard(other.get(), 1, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC), nullptr));
    return reply ? reply->status : -1;
  };
  // Each repetition of the key would take the keyboard again.
  const std::uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
  const auto still = xcb_change_keyboard_control_checked(other.get(), XCB_KB_AUTO_REPEAT_MODE, &off);
  ASSERT_FALSE(ErrorRef(xcb_request_check(other.get(), still)));
  constexpr KeyCombo combo{124, KeyCombo::control | KeyCombo::option};
  int presses = 0;
  auto& keys = platform().hotKeys();
  keys.setPressHandler([&](HotKeyID) {
    ++presses;
    EXPECT_EQ(take(), XCB_GRAB_STATUS_ALREADY_GRABBED) << "or this shows nothing";
    keys.letGoOfKeyboard();
    EXPECT_EQ(take(), XCB_GRAB_STATUS_SUCCESS);
  });
  ASSERT_TRUE(keys.registerHotKey(combo, {1, 1}).handle.has_value());
  driver->holdKey(combo);
  EXPECT_TRUE(driver->until([&] { return presses == 1; }));
  xcb_ungrab_keyboard(other.get(), XCB_CURRENT_TIME);
  xcb_flush(other.get());
  driver->letKeyGo(combo);
  keys.letGoOfKeyboard();  // when nothing is held it does no harm
}

TEST_P(X11Contract, AReadingWaitsForTheServerAFewTimesHoweverManyWindowsThereAre) {
  start();
  for (int i = 0; i < 24; ++i) driver->open({.title = std::to_string(i), .desktop = i % desktopsPerDisplay});
  driver->settle();
  const auto cost = [&](const std::function<void()>& read) {
    const auto before = x11().roundTrips();
    const auto reading = server().beginRead();
    read();
    return x11().roundTrips() - before;
  };
  const auto all = [&] {
    EXPECT_EQ(spaces().size(), desktopsPerDisplay);
    EXPECT_EQ(platform().windowList().copyWindowInfo(WindowListOption::all).value().size(), 24U);
    for (const auto space : spaces()) EXPECT_EQ(windowsOn(space).size(), 24U / desktopsPerDisplay);
  };
  // What the window manager still does after `settle` is read in between.
  EXPECT_TRUE(driver->until([&] { return cost([&] { spaces(); }) == 0; })) << "the events keep the displays known";
  EXPECT_LE(cost(all), 2U);
  std::uint64_t elsewhere = 0;
  std::thread([&] { elsewhere = cost(all); }).join();
  EXPECT_GT(elsewhere, 0U);
  EXPECT_LE(elsewhere, 3U) << "without the events";
}

TEST_P(X11Contract, TheFocusedWindowIsKnownAndMovedWithoutAWait) {
  start();
  const auto first = driver->open({.title = "first", .pid = 5001});
  const auto second = driver->open({.title = "second", .pid = 5002});
  const auto all = spaces();
  const XcbConnectionRef other(xcb_connect(nullptr, nullptr));
  for (const auto& [window, pid] : {std::pair{first, 5001}, std::pair{second, 5002}}) {
    driver->focus(window);
    std::uint64_t before = 0;
    std::optional<WindowInfo> known;
    // The events of the focus come in first, and what the window manager still does about it.
    const auto isKnown = [&, wanted = window, owner = pid] {
      before = x11().roundTrips();
      const auto reading = server().beginRead();
      const auto front = platform().applications().frontmost();
      known = platform().windowList().frontWindow(owner);
      return front && front->pid == owner && known && known->number == wanted && x11().roundTrips() == before;
    };
    ASSERT_TRUE(driver->until(isKnown)) << pid;
    // Its frame moves and it does not, inside it.
    const std::array<std::uint32_t, 2> place{700, 500};
    xcb_configure_window(other.get(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place.data());
    xcb_flush(other.get());
    EXPECT_TRUE(driver->until([&] { return isKnown() && *known->bounds->x > 600; })) << pid;

    EXPECT_TRUE(server().performBridged(MoveWindowsToSpace{{window}, all[2]}));
    EXPECT_EQ(x11().roundTrips(), before) << pid;
    EXPECT_TRUE(driver->until([&, moved = window] { return spacesOf(moved) == std::vector{all[2]}; })) << pid;
  }
}

TEST_P(X11Contract, AWindowThatGoesOnChangingIsReadNowAndThen) {
  start();
  const auto window = driver->open({.title = "dragged", .pid = 5001});
  driver->focus(window);
  std::optional<WindowInfo> known;
  std::uint64_t before = 0;
  const auto look = [&] {
    before = x11().roundTrips();
    const auto reading = server().beginRead();
    known = platform().windowList().frontWindow(5001);
    return known && known->number == window;
  };
  const auto isKnown = [&] { return look() && x11().roundTrips() == before; };
  ASSERT_TRUE(driver->until(isKnown));

  const harness::XConnection other(std::getenv("DISPLAY"));
  auto& dispatch = platform().dispatch();
  const auto begin = dispatch.now();
  const auto asked = x11().roundTrips();
  std::uint32_t moves = 0;
  // Each is dealt with before the next, as those of a hand are.
  auto moving = dispatch.every(std::chrono::milliseconds(5), [&] {
    const std::array<std::uint32_t, 2> place{100 + ++moves, 100};
    xcb_configure_window(other.get(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place.data());
    other.flush();
  });
  ASSERT_TRUE(driver->until([&] { return moves >= 150; }));
  moving.reset();
  const auto tenths = (dispatch.now() - begin) / std::chrono::milliseconds(100);
  // One reading waits once, for all its answers; at first, and after each rest of a busy machine, there are a few more.
  EXPECT_LE(x11().roundTrips() - asked, static_cast<std::uint64_t>(3 * (tenths + 4)));
  EXPECT_TRUE(driver->until([&] { return isKnown() && *known->bounds->x >= 200; })) << "what it came to";

  other.setText(window, "_NET_WM_NAME", "UTF8_STRING", "somewhere else");
  other.flush();
  EXPECT_TRUE(driver->until([&] { return look() && known->name == "somewhere else"; }));
}

TEST_P(X11Contract, TheTouchpadSaysHowItScrolls) {
  start();
  InputSettings settings;
  const auto devices = settings.pointers();
  ASSERT_GE(devices.size(), 2U);
  const std::string natural = "libinput Natural Scrolling Enabled";
  const std::string tapping = "libinput Tapping Enabled";
  auto& preferences = platform().preferences();
  EXPECT_FALSE(preferences.naturalScrolling()) << "no device says anything";
  settings.set(devices[0], natural, true);
  EXPECT_TRUE(preferences.naturalScrolling()) << "a mouse alone";
  settings.set(devices[1], tapping, false);
  EXPECT_TRUE(preferences.naturalScrolling()) << "a touchpad that does not say";
  settings.set(devices[1], natural, false);
  EXPECT_FALSE(preferences.naturalScrolling()) << "the touchpad counts";
  settings.set(devices[0], natural, false);
  settings.set(devices[1], natural, true);
  EXPECT_TRUE(preferences.naturalScrolling());
}

INSTANTIATE_TEST_SUITE_P(X11, X11Contract, testing::Values(x11Backends().front()), testing::PrintToStringParamName());

}  // namespace tessaspaces::contract
