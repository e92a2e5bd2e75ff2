#include <gmock/gmock.h>

#include <array>
#include <cstdlib>

#include "bridges/TitleBarDrag.h"
#include "harness/Client.h"
#include "harness/Input.h"
#include "harness/Probe.h"
#include "harness/WindowManager.h"
#include "harness/XServer.h"
#include "platform/loop/RunLoop.h"
#include "platform/x11/X11Platform.h"
#include "settings/ConfigStore.h"
#include "settings/Log.h"
#include "settings/Settings.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using harness::Manager;
using testing::Optional;

constexpr std::array everyManager{Manager::openbox, Manager::xfwm4, Manager::i3, Manager::icewm, Manager::metacity};
constexpr int homeX = 700;
constexpr int homeY = 600;

class RealDrag : public testing::Test {
 protected:
  void start(Manager manager) {
    // Read once: in this program every X error that is not a dying window's is a failure.
    setenv("TESSASPACES_X_FATAL", "1", 1);
    setenv("DISPLAY", server.display().c_str(), 1);
    windowManager.emplace(server, manager);
    ConfigStore::useDirectory(server.home() / "config");
    Settings::setLogLevel(LogLevel::debug);
    auto dispatch = std::make_unique<RunLoop>();
    loop = dispatch.get();
    platform = X11Platform::open(std::move(dispatch), nullptr);
    ASSERT_TRUE(platform);
    setPlatform(platform.get());
    pointer.moveTo(homeX, homeY);
  }

  ~RealDrag() override {
    platform.reset();  // background jobs end on the platform on which they began
    setPlatform(nullptr);
    if (HasFailure()) std::fputs(harness::readFile(Log::fileURL()).c_str(), stderr);
  }

  SpaceWindow open(const harness::WindowSpec& given = {}) {
    auto spec = given;
    spec.pid = 5001;
    spec.desktop = 0;
    const SpaceWindow window{clients.open(spec), spec.title, 5001, {}};
    // Listed does not mean laid out.
    EXPECT_TRUE(eventually([&] {
      const auto found = access(window);
      const auto bar = found ? found->titleBar() : std::nullopt;
      return bar && found->isAt(bar->center());
    }));
    return window;
  }
  std::unique_ptr<AccessibilityWindow> access(const SpaceWindow& window) {
    return platform->accessibility().find(window.pid, window.id);
  }

  /// Runs `work` where the program does such things; false also when it does not come to an end.
  bool inBackground(const std::function<bool()>& work) {
    std::optional<bool> result;
    platform->dispatch().background([&] {
      const bool done = work();
      platform->dispatch().async([&, done] { result = done; });
    });
    EXPECT_TRUE(loop->runUntil([&] { return result.has_value(); }, loop->now() + harness::patience));
    return result.value_or(false);
  }
  bool eventually(const std::function<bool()>& holds) {
    const auto clock = loop->every(5ms, [] {});
    return loop->runUntil(holds, loop->now() + harness::patience);
  }

  bool showSecond() {
    auto& windows = platform->windowServer();
    const auto display = windows.copyManagedDisplaySpaces().value().at(0);
    const auto second = *display.spaces->at(1).id64;
    windows.performBridged(SetCurrentSpace{*display.displayIdentifier, second});
    return probe.waitForDesktop(1);
  }

  void expectHandsOff() {
    const auto& x = probe.connection();
    const auto at = x.reply(xcb_query_pointer_reply, xcb_query_pointer(x.get(), x.root()));
    ASSERT_TRUE(at);
    EXPECT_EQ(at->mask & 0x1f00, 0) << "a button is down";
    EXPECT_EQ(at->root_x, homeX);
    EXPECT_EQ(at->root_y, homeY);
    // Nor does the window manager believe in a drag any more: it would hold the pointer.
    EXPECT_TRUE(eventually([&] {
      const auto grab = x.reply(xcb_grab_pointer_reply,
                                xcb_grab_pointer(x.get(), 0, x.root(), XCB_EVENT_MASK_BUTTON_RELEASE,
                                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, 0));
      xcb_ungrab_pointer(x.get(), XCB_CURRENT_TIME);
      return grab && grab->status == XCB_GRAB_STATUS_SUCCESS;
    }));
  }

  harness::XServer server;
  std::optional<harness::WindowManager> windowManager;
  harness::Client clients{server};
  harness::Probe probe{server};
  harness::Pointer pointer{server};
  RunLoop* loop = nullptr;
  std::unique_ptr<X11Platform> platform;
};

class DragThatCarries : public RealDrag, public testing::WithParamInterface<Manager> {};
class DragInVain : public RealDrag, public testing::WithParamInterface<Manager> {};
class Placing : public RealDrag, public testing::WithParamInterface<Manager> {};

std::string nameOf(const testing::TestParamInfo<Manager>& info) {
  return std::string(harness::nameOf(info.param));
}

TEST_P(DragThatCarries, TheWindowComesAlong) {
  start(GetParam());
  const auto window = open();
  const auto found = access(window);
  const auto before = found->frame();
  EXPECT_TRUE(inBackground([&] { return TitleBarDrag::carry(window, [&] { return showSecond(); }); }));
  EXPECT_TRUE(probe.waitFor([&] { return probe.desktopOf(window.id) == 1; }));
  expectHandsOff();
  EXPECT_TRUE(eventually([&] { return found->frame() == before; }));
}

TEST_P(DragThatCarries, ACoveredWindowIsRaisedFirst) {
  start(GetParam());
  const auto window = open({.title = "below"});
  open({.title = "above", .frame = {60, 60, 700, 500}});
  EXPECT_TRUE(inBackground([&] { return TitleBarDrag::carry(window, [&] { return showSecond(); }); }));
  EXPECT_TRUE(probe.waitFor([&] { return probe.desktopOf(window.id) == 1; }));
  expectHandsOff();
}

TEST_P(DragThatCarries, ASwitchThatFailsLeavesEverythingInPlace) {
  start(GetParam());
  const auto window = open();
  const auto found = access(window);
  const auto before = found->frame();
  EXPECT_FALSE(inBackground([&] { return TitleBarDrag::carry(window, [] { return false; }); }));
  expectHandsOff();
  EXPECT_EQ(probe.desktopOf(window.id), 0);
  EXPECT_TRUE(eventually([&] { return found->frame() == before; }));
}

TEST_P(DragThatCarries, AWindowMayCloseMidWay) {
  start(GetParam());
  const auto window = open();
  bool held = false;
  inBackground([&] {
    return TitleBarDrag::carry(window, [&] {
      held = true;
      clients.close(window.id);
      return probe.waitFor([&] { return !probe.manages(window.id); }) && showSecond();
    });
  });
  EXPECT_TRUE(held);
  expectHandsOff();
  // The window manager is in its right mind.
  EXPECT_TRUE(probe.manages(clients.open({.title = "next"})));
}

INSTANTIATE_TEST_SUITE_P(X11, DragThatCarries, testing::Values(Manager::openbox, Manager::metacity), nameOf);

TEST_P(DragInVain, IsNotTried) {
  start(GetParam());
  const auto window = open({.type = "_NET_WM_WINDOW_TYPE_DIALOG"});  // i3 lets these float
  const auto found = access(window);
  const auto before = found->frame();
  bool switched = false;
  EXPECT_FALSE(inBackground([&] { return TitleBarDrag::carry(window, [&] { return switched = showSecond(); }); }));
  EXPECT_FALSE(switched);
  expectHandsOff();
  EXPECT_EQ(probe.desktopOf(window.id), 0);
  EXPECT_EQ(found->frame(), before);
}

INSTANTIATE_TEST_SUITE_P(X11, DragInVain, testing::Values(Manager::xfwm4, Manager::i3, Manager::icewm), nameOf);

TEST_P(Placing, PutsTheFrameThere) {
  start(GetParam());
  const auto found = access(open({.type = "_NET_WM_WINDOW_TYPE_DIALOG"}));
  for (const Rect& wanted : {Rect{300, 200, 600, 400}, Rect{301, 170, 500, 399}}) {
    EXPECT_TRUE(found->place(wanted));
    EXPECT_TRUE(eventually([&] { return found->frame() == wanted; }))
        << found->frame()->x << ", " << found->frame()->y << " " << found->frame()->width;
  }
}

TEST_P(Placing, AMaximisedWindowGivesThatUp) {
  start(GetParam());
  const auto window = open({.type = "_NET_WM_WINDOW_TYPE_DIALOG"});
  const auto found = access(window);
  const auto& x = probe.connection();
  x.sendToRoot(window.id, "_NET_WM_STATE",
               {1, x.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), x.atom("_NET_WM_STATE_MAXIMIZED_VERT"), 2});
  // i3 knows no such state.
  const bool maximised = GetParam() == Manager::i3 || eventually([&] { return found->frame()->width >= 1900; });
  ASSERT_TRUE(maximised);
  const Rect wanted{300, 200, 600, 400};
  EXPECT_TRUE(found->place(wanted));
  EXPECT_TRUE(eventually([&] {
    const auto frame = found->frame();
    return Point{frame->x, frame->y} == Point{wanted.x, wanted.y} && frame->width <= wanted.width + 20;
  })) << found->frame()->x
      << ", " << found->frame()->width;
}

INSTANTIATE_TEST_SUITE_P(X11, Placing, testing::ValuesIn(everyManager), nameOf);

TEST_F(RealDrag, AButtonThatIsHeldIsReleasedWhenTheProgramEnds) {
  start(Manager::none);
  EXPECT_TRUE(platform->inputEvents().pressMouse());
  EXPECT_THAT(platform->inputEvents().held(), Optional(HeldInput{.button = true}));
  platform.reset();
  setPlatform(nullptr);
  const auto& x = probe.connection();
  const auto at = x.reply(xcb_query_pointer_reply, xcb_query_pointer(x.get(), x.root()));
  EXPECT_EQ(at->mask & 0x1f00, 0);
}

}  // namespace
}  // namespace tessaspaces
