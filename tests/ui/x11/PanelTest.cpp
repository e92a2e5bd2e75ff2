#include "ui/x11/PanelTest.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <QWidget>
#include <array>
#include <cmath>
#include <cstring>

#include "ui/x11/Await.h"

namespace tessaspaces {
namespace {

constexpr int width = 640;
constexpr int height = 800;

}  // namespace

const harness::XServer* PanelTest::server = nullptr;

bool RecordingInput::hotKey(KeyCombo combo, bool) {
  if (combo != known) return false;
  heard.push_back("hot key " + combo.display());
  return true;
}

void RecordingInput::note(const char* what, GridButton button, Point at) {
  constexpr std::array names{"left", "middle", "right"};
  heard.push_back(std::string(what) + ' ' + names.at(static_cast<std::size_t>(button)) + ' ' +
                  std::to_string(std::lround(std::floor(at.x))) + ',' + std::to_string(std::lround(std::floor(at.y))));
}

PanelTest::PanelTest() {
  // Nothing reacts to where the pointer was in the case before.
  pointer.moveTo(320, 790);
  below = application.openUnmanaged({.frame = {0, 0, 2 * width, height}, .colour = 0x884422});
  const auto& x = application.connection();
  const std::uint32_t mask = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_EXPOSURE |
                             XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(x.get(), below, XCB_CW_EVENT_MASK, &mask);
  x.roundTrip();
  xcb_set_input_focus(x.get(), XCB_INPUT_FOCUS_POINTER_ROOT, below, XCB_CURRENT_TIME);
  x.roundTrip();
  leaked();
  system = X11PanelSystem::make();
  for (std::size_t i = 0; i < 2; ++i) panels[i] = std::make_unique<PanelWindow>(inputs[i], *system);
}

PanelTest::~PanelTest() {
  for (auto& panel : panels) panel.reset();
  system.reset();
  settle();
  application.close(below);
  application.connection().roundTrip();
}

GridScene PanelTest::scene(int monitor) {
  GridScene scene;
  scene.bounds = {width, height};
  scene.header = {18, 0, width - 36, 44};
  scene.title = monitor == 0 ? "left" : "right";
  for (int i = 0; i < 4; ++i) {
    GridScene::Tile tile;
    tile.space = static_cast<SpaceID>(i + 1);
    tile.rect = tile.content = {20.0 + i % 2 * 300, 100.0 + i / 2 * 300, 280, 250};
    tile.background.color = 0xFF204060U + static_cast<std::uint32_t>(i * 0x202000 + monitor * 0x60);
    tile.label = "Desktop " + std::to_string(i + 1);
    tile.number = i + 1;
    tile.current = i == 0;
    // The one in front covers the middle of the one behind.
    for (int w = 0; w < 2; ++w) {
      GridScene::Window window;
      window.id = static_cast<WindowID>(10 * (i + 1) + w);
      window.rect = {tile.rect.x + 90 - w * 60, tile.rect.y + 60 - w * 40, 100.0 + w * 100, 80.0 + w * 80};
      window.title = "Window " + std::to_string(window.id);
      window.application = "Application";
      tile.windows.push_back(window);
    }
    scene.tiles.push_back(tile);
  }
  return scene;
}

ScreenRef PanelTest::screen(int monitor) {
  Screen screen;
  screen.name = monitor == 0 ? "left" : "right";
  screen.frame = {static_cast<double>(monitor * width), 0, width, height};
  return std::make_shared<Screen>(screen);
}

void PanelTest::openBoth() {
  open(1);
  open(0);
  ASSERT_TRUE(left().takeKeyboard());
}

QWidget* PanelTest::widget(int monitor) {
  for (QWidget* each : QApplication::topLevelWidgets()) {
    if (each->isVisible() && each->geometry().topLeft() == QPoint(monitor * width, 0)) return each;
  }
  return nullptr;
}

void PanelTest::settle() {
  auto* connection = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
  await(connection, xcb_get_input_focus_reply, xcb_get_input_focus(connection));
}

bool PanelTest::eventually(const std::function<bool()>& holds) {
  const QDeadlineTimer deadline(harness::patience);
  QTimer wake;  // for conditions that change without an event of ours
  wake.start(10);
  while (!holds()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

std::vector<std::string> PanelTest::hears(RecordingInput& input, std::size_t count) {
  eventually([&] { return input.heard.size() >= count; });
  return input.take();
}

std::size_t PanelTest::leaked() {
  const auto& x = application.connection();
  x.roundTrip();
  std::size_t count = 0;
  while (const harness::Owned<xcb_generic_event_t> event{xcb_poll_for_event(x.get())}) {
    const int type = event->response_type & 0x7f;
    count += type == XCB_KEY_PRESS || type == XCB_BUTTON_PRESS ? 1 : 0;
  }
  return count;
}

QImage PanelTest::screenContent(const harness::XConnection& connection) {
  const auto reply =
      connection.reply(xcb_get_image_reply, xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                                          connection.root(), 0, 0, 2 * width, height, 0xFFFFFFFF));
  QImage image(2 * width, height, QImage::Format_RGB32);
  if (!reply || xcb_get_image_data_length(reply.get()) < image.sizeInBytes()) return {};
  std::memcpy(image.bits(), xcb_get_image_data(reply.get()), static_cast<std::size_t>(image.sizeInBytes()));
  for (int y = 0; y < height; ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < 2 * width; ++x) line[x] |= 0xFF000000;
  }
  return image;
}

}  // namespace tessaspaces
