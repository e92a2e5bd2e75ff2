// What adding and removing desktops does when the window manager or the windows do not play along.
#include <gmock/gmock.h>

#include <cstdlib>

#include "harness/XConnection.h"
#include "harness/XServer.h"
#include "platform/simulated/VirtualDispatch.h"
#include "platform/x11/X11Platform.h"

namespace tessaspaces::contract {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

enum class Count { ignored, obeyed };

/// As much of a window manager as a pager gets to see, with windows that are never drawn.
class SmallManager {
 public:
  SmallManager(const harness::XServer& server, Count count) : x_(server.display()), count_(count) {
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(x_.get(), x_.root(), XCB_CW_EVENT_MASK, &mask);
    const auto check = makeWindow();
    for (const auto window : {check, x_.root()}) x_.setNumbers(window, "_NET_SUPPORTING_WM_CHECK", "WINDOW", {check});
    x_.setText(check, "_NET_WM_NAME", "UTF8_STRING", "small");
    setRoot("_NET_NUMBER_OF_DESKTOPS", 4);
    setRoot("_NET_CURRENT_DESKTOP", 3);
    for (std::uint32_t desktop = 0; desktop < 4; ++desktop) {
      windows_.push_back(makeWindow());
      x_.setNumbers(windows_.back(), "_NET_WM_DESKTOP", "CARDINAL", {desktop});
    }
    x_.setNumbers(x_.root(), "_NET_CLIENT_LIST", "WINDOW", windows_);
    x_.roundTrip();
  }

  /// Deals with the messages that have come.
  void serve() {
    x_.roundTrip();
    while (const harness::Owned<xcb_generic_event_t> event{xcb_poll_for_event(x_.get())}) {
      if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) continue;
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
      const auto value = message.data.data32[0];
      ++messages_;
      if (message.type == x_.atom("_NET_WM_DESKTOP"))
        x_.setNumbers(message.window, "_NET_WM_DESKTOP", "CARDINAL", {value});
      if (message.type == x_.atom("_NET_CURRENT_DESKTOP")) setRoot("_NET_CURRENT_DESKTOP", value);
      if (message.type == x_.atom("_NET_NUMBER_OF_DESKTOPS") && count_ == Count::obeyed) {
        setRoot("_NET_NUMBER_OF_DESKTOPS", value);
      }
      if (doomed_ != XCB_NONE) xcb_destroy_window(x_.get(), std::exchange(doomed_, XCB_NONE));
    }
    x_.roundTrip();
  }

  /// Its window goes as the first message comes.
  void doom(std::size_t window) { doomed_ = windows_.at(window); }
  [[nodiscard]] int messages() const { return messages_; }
  [[nodiscard]] std::vector<int> desktops() const {
    std::vector<int> desktops;
    for (const auto window : windows_) {
      desktops.push_back(static_cast<int>(x_.number(window, "_NET_WM_DESKTOP").value_or(99)));
    }
    return desktops;
  }
  [[nodiscard]] std::uint32_t root(const char* property) const { return x_.number(x_.root(), property).value_or(99); }

 private:
  xcb_window_t makeWindow() {
    const xcb_window_t window = xcb_generate_id(x_.get());
    xcb_create_window(x_.get(), XCB_COPY_FROM_PARENT, window, x_.root(), 0, 0, 10, 10, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      x_.screen().root_visual, 0, nullptr);
    return window;
  }
  void setRoot(const char* property, std::uint32_t value) { x_.setNumbers(x_.root(), property, "CARDINAL", {value}); }

  harness::XConnection x_;
  Count count_;
  std::vector<xcb_window_t> windows_;
  xcb_window_t doomed_ = XCB_NONE;
  int messages_ = 0;
};

class X11DesktopCount : public testing::Test {
 protected:
  void start(Count count) {
    manager = std::make_unique<SmallManager>(server, count);
    setenv("DISPLAY", server.display().c_str(), 1);
    auto clock = std::make_unique<VirtualDispatch>();
    time = clock.get();
    std::string error;
    platform = X11Platform::open(std::move(clock), &error, X11Events::ignored);
    ASSERT_TRUE(platform) << error;
    display = platform->screens().mainScreen()->uuid.value_or("");
    keepServing();
  }
  ~X11DesktopCount() override { before ? setenv("DISPLAY", before->c_str(), 1) : unsetenv("DISPLAY"); }

  /// The window manager gets its turn whenever the platform waits.
  void keepServing() {
    time->outside(1ms, [this] {
      manager->serve();
      keepServing();
    });
  }

  const std::optional<std::string> before =
      std::getenv("DISPLAY") ? std::optional<std::string>(std::getenv("DISPLAY")) : std::nullopt;
  harness::XServer server;
  std::unique_ptr<SmallManager> manager;
  VirtualDispatch* time = nullptr;
  std::unique_ptr<X11Platform> platform;
  std::string display;
};

TEST_F(X11DesktopCount, AManagerThatIgnoresTheNumberGetsItsWindowsBack) {
  start(Count::ignored);
  EXPECT_FALSE(platform->windowServer().removeSpace(display, 2));
  time->advance(10ms);
  EXPECT_THAT(manager->desktops(), ElementsAre(0, 1, 2, 3));
  EXPECT_EQ(manager->root("_NET_CURRENT_DESKTOP"), 3U);

  const auto asked = manager->messages();
  EXPECT_GT(asked, 0);
  EXPECT_FALSE(platform->windowServer().removeSpace(display, 2));
  EXPECT_FALSE(platform->windowServer().addSpace(display));
  time->advance(10ms);
  EXPECT_EQ(manager->messages(), asked) << "it has shown what it is like";
}

TEST_F(X11DesktopCount, AWindowMayVanishHalfWay) {
  for (const std::size_t window : {2U, 3U}) {
    SCOPED_TRACE(window);
    start(Count::obeyed);
    manager->doom(window);
    const auto begin = time->now();
    EXPECT_TRUE(platform->windowServer().removeSpace(display, 2));
    EXPECT_LT(time->now() - begin, 50ms) << "nobody waits for one that is gone";
    std::vector<int> left{0, 1, 1, 2};
    left[window] = 99;
    EXPECT_EQ(manager->desktops(), left);
    EXPECT_EQ(manager->root("_NET_CURRENT_DESKTOP"), 2U);
    EXPECT_EQ(manager->root("_NET_NUMBER_OF_DESKTOPS"), 3U);
    platform.reset();
    manager.reset();
  }
}

}  // namespace
}  // namespace tessaspaces::contract
