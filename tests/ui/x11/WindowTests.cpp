#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QWidget>
#include <algorithm>
#include <array>
#include <atomic>
#include <thread>

#include "ui/ScenePainter.h"
#include "ui/x11/PanelTest.h"

namespace tessaspaces {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Looks at the screen all the time and keeps each picture that differs from the one before.
class Onlooker {
 public:
  explicit Onlooker(const harness::XServer& server, std::function<QImage(const harness::XConnection&)> look)
      : thread_([this, &server, look = std::move(look)] {
          const harness::XConnection connection(server.display());
          while (!end_) {
            QImage now = look(connection);
            if (seen_.empty() || seen_.back() != now) seen_.push_back(std::move(now));
            ready_ = true;
          }
        }) {
    while (!ready_) std::this_thread::yield();
  }
  ~Onlooker() { stop(); }
  const std::vector<QImage>& stop() {
    end_ = true;
    if (thread_.joinable()) thread_.join();
    return seen_;
  }

 private:
  std::atomic<bool> end_ = false;
  std::atomic<bool> ready_ = false;
  std::vector<QImage> seen_;
  std::thread thread_;
};

/// The screen with a panel drawn where its monitor is.
QImage with(QImage screen, const GridScene& scene, int monitor) {
  ScenePainter painter;
  painter.setScene(scene, 1, Theme::fromPalette(QApplication::palette()));
  QPainter onto(&screen);
  onto.drawImage(monitor * 640, 0, painter.render());
  return screen;
}

TEST_F(PanelTest, AppearsCompleteAndGoesAtOnce) {
  const auto& x = application.connection();
  std::vector<QImage> allowed{screenContent(x)};
  allowed.push_back(with(allowed[0], scene(1), 1));
  allowed.push_back(with(allowed[1], scene(0), 0));
  Onlooker onlooker(*server, screenContent);
  open(1);
  // The window system has all that was asked of it by then; Qt's loop has not been turned yet.
  ASSERT_TRUE(right().takeKeyboard());
  EXPECT_TRUE(screenContent(x) == allowed[1]) << "opened means seen";
  open(0);
  ASSERT_TRUE(left().takeKeyboard());
  EXPECT_TRUE(screenContent(x) == allowed[2]);
  // What Qt still paints because the windows have appeared changes nothing.
  const QWidget* shown = widget(0);
  ASSERT_TRUE(eventually([&] { return shown->testAttribute(Qt::WA_Mapped); }));
  QApplication::processEvents();
  EXPECT_TRUE(screenContent(x) == allowed[2]);
  const auto& seen = onlooker.stop();
  for (const QImage& each : seen) {
    EXPECT_TRUE(std::find(allowed.begin(), allowed.end(), each) != allowed.end()) << "half a panel was seen";
  }
  left().close();
  right().close();
  EXPECT_TRUE(eventually([&] { return screenContent(x) == allowed[0]; }));
  // Opened once more nothing of the time before is left.
  open(0);
  ASSERT_TRUE(left().takeKeyboard());
  EXPECT_TRUE(screenContent(x) == with(allowed[0], scene(0), 0));
  // What changes before Qt knows that the window is there is not forgotten.
  GridScene changed = scene(0);
  changed.tiles[3].selected = true;
  left().show(changed);
  EXPECT_TRUE(eventually([&] { return screenContent(x) == with(allowed[0], changed, 0); }));
}

TEST_F(PanelTest, FollowsItsSceneAndZooms) {
  const auto& x = application.connection();
  const QImage before = screenContent(x);
  int finished = 0;
  const GridPanelView::Zoom out{GridPanelView::Zoom::Direction::out, scene(0).tiles[0].content,
                                std::chrono::milliseconds(150)};
  open(0, out, [&] { ++finished; });
  EXPECT_EQ(finished, 0);
  GridScene next = scene(0);
  next.tiles[1].hovered = true;
  next.hint = "hint";
  left().show(next);  // while it zooms
  EXPECT_TRUE(eventually([&] { return screenContent(x) == with(before, next, 0); }));
  EXPECT_EQ(finished, 1);

  next.tiles[1].hovered = false;
  next.tiles[2].selected = true;
  left().show(next);
  next.carried = GridScene::Carried{next.tiles[0].windows[0]};
  next.carried->window.rect.x += 200;
  left().show(next);
  EXPECT_TRUE(eventually([&] { return screenContent(x) == with(before, next, 0); }));
  next.carried.reset();
  left().show(next);
  left().flyBack(next.tiles[0].windows[0], {300, 300, 100, 80}, next.tiles[0].windows[0].rect);
  settle();
  EXPECT_TRUE(screenContent(x) != with(before, next, 0)) << "it is in the air";
  EXPECT_TRUE(eventually([&] { return screenContent(x) == with(before, next, 0); })) << "and nothing is left of it";

  // A zoom that closing, or another zoom, cuts short is never finished.
  left().animate({GridPanelView::Zoom::Direction::in, next.tiles[1].content, std::chrono::milliseconds(50)},
                 [&] { finished = 100; });
  left().animate({GridPanelView::Zoom::Direction::in, next.tiles[1].content, std::chrono::milliseconds(50)},
                 [&] { finished = 200; });
  left().close();
  open(1, out, [&] { ++finished; });
  EXPECT_TRUE(eventually([&] { return finished == 2; }));
}

TEST_F(PanelTest, HearsWhatIsPressedAndNobodyElseDoes) {
  openBoth();
  inputs[0].known = {KeyCombo::digitKeyCodes[4], KeyCombo::control | KeyCombo::option};
  keyboard.strike(harness::keys::left);
  keyboard.type("aX 7");
  keyboard.press(inputs[0].known);
  keyboard.strike(harness::keys::tab);
  keyboard.strike(harness::keys::enter);
  const auto key = [](GridKey which) { return "key " + std::to_string(static_cast<int>(which)); };
  EXPECT_THAT(hears(inputs[0], 8),
              ElementsAre(key(GridKey::left), "typed a", "typed X", "typed  ", "typed 7",
                          "hot key " + inputs[0].known.display(), key(GridKey::tab), key(GridKey::enter)));
  pointer.moveTo(100, 120);
  pointer.click();
  pointer.moveTo(640 + 40, 300);
  pointer.click(3);
  pointer.click(2);
  EXPECT_THAT(hears(inputs[0], 2), ElementsAre("press left 100,120", "release left 100,120"));
  EXPECT_THAT(hears(inputs[1], 4), ElementsAre("press right 40,300", "release right 40,300", "press middle 40,300",
                                               "release middle 40,300"));
  // A drag stays with the panel that it began on.
  pointer.moveTo(100, 120);
  pointer.press();
  pointer.glideTo(900, 200);
  EXPECT_TRUE(eventually([&] { return inputs[0].last == Point{900, 200}; }));
  pointer.release();
  EXPECT_THAT(hears(inputs[0], 2), ElementsAre("press left 100,120", "release left 900,200"));
  EXPECT_THAT(inputs[1].take(), IsEmpty());
  EXPECT_EQ(leaked(), 0u);

  // The keyboard goes over to another panel, and the one that had it before cannot give it away any more.
  ASSERT_TRUE(right().takeKeyboard());
  left().giveKeyboardBack();
  keyboard.type("b");
  EXPECT_THAT(hears(inputs[1], 1), ElementsAre("typed b"));
  // A click where no panel is.
  left().close();
  settle();
  pointer.moveTo(200, 150);
  pointer.click();
  EXPECT_THAT(hears(inputs[1], 2), ElementsAre("press left -440,150", "release left -440,150"));
  EXPECT_THAT(inputs[0].take(), IsEmpty());
  EXPECT_EQ(leaked(), 0u);

  right().close();
  settle();
  keyboard.type("c");
  EXPECT_TRUE(eventually([&] { return leaked() == 1; })) << "the keyboard is the application's again";
  pointer.click();
  EXPECT_TRUE(eventually([&] { return leaked() == 1; }));
  QApplication::processEvents();
  EXPECT_THAT(inputs[1].take(), IsEmpty());
}

TEST_F(PanelTest, LeavesWhatAnotherProgramHolds) {
  const harness::Client other(*server);
  auto* x = other.connection().get();
  const auto root = other.connection().root();
  const auto holdsPointer = [&] {
    const auto reply = other.connection().reply(
        xcb_grab_pointer_reply, xcb_grab_pointer(x, 0, root, XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                                                 XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
  };
  const auto keyboardGrab = other.connection().reply(
      xcb_grab_keyboard_reply,
      xcb_grab_keyboard(x, 0, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
  ASSERT_TRUE(keyboardGrab && keyboardGrab->status == XCB_GRAB_STATUS_SUCCESS);
  open(0);
  EXPECT_FALSE(left().takeKeyboard());
  EXPECT_TRUE(holdsPointer()) << "half of the input is not kept";
  xcb_ungrab_keyboard(x, XCB_CURRENT_TIME);
  other.connection().roundTrip();
  EXPECT_FALSE(left().takeKeyboard());
  xcb_ungrab_pointer(x, XCB_CURRENT_TIME);
  other.connection().roundTrip();
  EXPECT_TRUE(left().takeKeyboard());
  EXPECT_FALSE(holdsPointer());
  // Should the server end the grab, the panel takes the input again.
  xcb_ungrab_keyboard(qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection(), XCB_CURRENT_TIME);
  xcb_flush(qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection());
  EXPECT_TRUE(eventually([&] {
    keyboard.type("d");
    QApplication::processEvents();
    return !inputs[0].take().empty();
  }));
}

TEST_F(PanelTest, DoesNotMeanKeysThatWereHeldBefore) {
  const KeyCombo held{5, KeyCombo::control};  // control + G
  keyboard.keyDown(held);
  EXPECT_TRUE(eventually([&] { return leaked() > 0; }));
  open(0);
  ASSERT_TRUE(left().takeKeyboard());
  keyboard.strike(harness::keys::down);
  EXPECT_THAT(hears(inputs[0], 1), ElementsAre("key " + std::to_string(static_cast<int>(GridKey::down))));
  keyboard.keyUp(held);
  // A press in the very millisecond of the release is a repetition.
  EXPECT_TRUE(eventually([&] {
    keyboard.type("g");
    return !inputs[0].heard.empty();
  }));
  EXPECT_EQ(inputs[0].take().front(), "typed g");
}

TEST(HeldKeys, AreNotMeantUntilTheyWereLetGo) {
  std::array<std::uint8_t, 32> down{};
  down[5] = 1U << 2U;  // keycode 42
  HeldKeys keys;
  keys.begin(down);
  EXPECT_FALSE(keys.swallowsPress(43, 100));
  EXPECT_FALSE(keys.swallowsRelease(43, 110));
  EXPECT_TRUE(keys.swallowsPress(42, 100)) << "repeated where the server sends presses alone";
  for (std::uint32_t time = 200; time < 500; time += 30) {
    EXPECT_TRUE(keys.swallowsRelease(42, time));
    EXPECT_TRUE(keys.swallowsPress(42, time)) << "repeated as a release and a press of one moment";
  }
  EXPECT_TRUE(keys.swallowsRelease(42, 600));
  EXPECT_FALSE(keys.swallowsPress(42, 640)) << "pressed anew";
  EXPECT_FALSE(keys.swallowsPress(42, 700));
  EXPECT_FALSE(keys.swallowsRelease(42, 710));
}

}  // namespace
}  // namespace tessaspaces
