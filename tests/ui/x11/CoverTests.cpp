#include <xcb/shape.h>

#include <QApplication>
#include <QWidget>
#include <QWindow>

#include "ui/x11/CoverWatch.h"
#include "ui/x11/PanelTest.h"

namespace tessaspaces {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

class Covering : public PanelTest {
 protected:
  /// Another program's window in front of everything, there when this returns.
  xcb_window_t front(harness::Rectangle frame) {
    const auto window = other.openUnmanaged({.frame = frame});
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(other.connection().get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    other.connection().roundTrip();
    return window;
  }
  static xcb_connection_t* connection() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
  }

  harness::Client other{*server};
};

TEST_F(Covering, ByWhatIsLargeAndInTheWay) {
  openBoth();
  CoverWatch watch(connection());
  const auto covered = [&] { return watch.isCovered(*widget(0)->windowHandle()); };
  EXPECT_FALSE(covered());
  // Notifications and the like.
  std::vector<xcb_window_t> windows{front({400, 20, 220, 90}), front({400, 120, 220, 90})};
  EXPECT_FALSE(covered());
  // On the other monitor.
  windows.push_back(front({640, 0, 640, 800}));
  EXPECT_FALSE(covered());
  // A compositor's window: over everything, and clicks go through.
  windows.push_back(front({0, 0, 1280, 800}));
  EXPECT_TRUE(covered());
  xcb_shape_rectangles(other.connection().get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                       windows.back(), 0, 0, 0, nullptr);
  other.connection().roundTrip();
  EXPECT_FALSE(covered());
  // Nothing but a small part of it is there.
  windows.push_back(front({0, 0, 640, 800}));
  EXPECT_TRUE(covered());
  const xcb_rectangle_t part{10, 10, 50, 50};
  xcb_shape_rectangles(other.connection().get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_UNSORTED,
                       windows.back(), 0, 0, 1, &part);
  other.connection().roundTrip();
  EXPECT_FALSE(covered());
  // Two that cover it together, until one of them goes.
  windows.push_back(front({0, 0, 640, 300}));
  EXPECT_FALSE(covered());
  windows.push_back(front({0, 300, 640, 300}));
  EXPECT_TRUE(covered());
  other.close(windows.back());
  other.connection().roundTrip();
  EXPECT_FALSE(covered());
  // One of this program's own.
  QWidget ours;
  ours.setWindowFlag(Qt::BypassWindowManagerHint);
  ours.setGeometry(0, 0, 640, 800);
  ours.show();
  ours.raise();
  ASSERT_TRUE(eventually([&] { return ours.windowHandle()->isExposed(); }));
  EXPECT_FALSE(covered());
}

TEST_F(Covering, IsToldOfTheOpenPanel) {
  openBoth();
  front({0, 0, 640, 800});
  EXPECT_TRUE(eventually([&] { return !inputs[0].heard.empty(); }));
  EXPECT_THAT(inputs[0].take(), Contains("covered"));
  EXPECT_THAT(inputs[1].take(), IsEmpty());
}

}  // namespace
}  // namespace tessaspaces
