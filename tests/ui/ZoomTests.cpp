#include <gtest/gtest.h>

#include <QPainter>

#include "ui/Flight.h"
#include "ui/Painted.h"
#include "ui/ZoomAnimation.h"

namespace tessaspaces {
namespace {

using Direction = GridPanelView::Zoom::Direction;

class ZoomTest : public PaintingTest {
 protected:
  void SetUp() override {
    PaintingTest::SetUp();
    scene = sampleScene();
    // One desktop that is red all over, though much else is on its tile.
    auto& tile = scene.tiles[2];
    tile.windows.clear();
    tile.background.image = plain(0xFFFF0000, 184, 113);
    tile.hovered = tile.selected = true;
    tile.fullScreenApplication = "Cinema";
    painter.setScene(scene, 1, sampleTheme());
  }
  [[nodiscard]] QImage frame(Direction direction, double progress) {
    const ZoomAnimation zoom(painter, {direction, scene.tiles[2].content, {}});
    QImage image(640, 400, QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QPainter on(&image);
    zoom.paint(on, progress);
    return image;
  }

  GridScene scene;
  ScenePainter painter;
};

TEST_F(ZoomTest, LeadsFromThePanelToTheDesktopAndBack) {
  const QImage panel = drawn(scene);
  const QImage desktop = [] {
    QImage image(640, 400, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
  }();
  EXPECT_EQ(difference(frame(Direction::in, 0), panel), "");
  EXPECT_EQ(difference(frame(Direction::in, 1), desktop), "");
  EXPECT_EQ(difference(frame(Direction::out, 0), desktop), "");
  EXPECT_EQ(difference(frame(Direction::out, 1), panel), "");
  // A frame that comes late is the last one.
  EXPECT_EQ(difference(frame(Direction::in, 1.4), desktop), "");
  EXPECT_EQ(difference(frame(Direction::out, 7), panel), "");
}

TEST_F(ZoomTest, TheTileGrowsSteadilyAndTheFramesFollowIt) {
  const Rect tile = scene.tiles[2].content;
  const ZoomAnimation zoom(painter, {Direction::in, tile, {}});
  const auto near = [](const QRectF& a, const QRectF& b) {
    return std::abs(a.x() - b.x()) + std::abs(a.y() - b.y()) + std::abs(a.width() - b.width()) +
               std::abs(a.height() - b.height()) <
           1e-6;
  };
  EXPECT_TRUE(near(zoom.rectAt(0), QRectF(tile.x, tile.y, tile.width, tile.height)));
  EXPECT_TRUE(near(zoom.rectAt(1), QRectF(0, 0, 640, 400)));
  QRectF before = zoom.rectAt(0);
  for (int step = 1; step <= 20; ++step) {
    const QRectF now = zoom.rectAt(step / 20.0);
    EXPECT_TRUE(now.adjusted(-1e-6, -1e-6, 1e-6, 1e-6).contains(before)) << step;
    before = now;
  }
  // On the way the desktop is where it should be, and the rest of the panel around it leaves no hole.
  const QImage half = frame(Direction::in, 0.5);
  const QRectF at = zoom.rectAt(0.5);
  EXPECT_EQ(QColor(half.pixel(at.center().toPoint())), QColor(Qt::red));
  EXPECT_EQ(QColor(half.pixel(at.topLeft().toPoint() + QPoint(4, 30))), QColor(Qt::red));
  for (int x = 0; x < 640; x += 3) {
    for (int y = 0; y < 400; y += 3) ASSERT_NE(QColor(half.pixel(x, y)), QColor(Qt::magenta)) << x << ", " << y;
  }
}

TEST_F(ZoomTest, NoTileIsNoReasonToFail) {
  const ZoomAnimation nowhere(painter, {Direction::in, Rect{}, {}});
  const ZoomAnimation elsewhere(painter, {Direction::in, Rect{100, 100, 50, 30}, {}});
  QImage image(640, 400, QImage::Format_RGB32);
  QPainter on(&image);
  nowhere.paint(on, 0.5);
  on.end();
  EXPECT_EQ(difference(image, drawn(scene)), "");
  QPainter again(&image);
  elsewhere.paint(again, 1);
  EXPECT_EQ(elsewhere.rectAt(1), QRectF(0, 0, 640, 400));
}

TEST_F(ZoomTest, AFlightLeavesNoTrace) {
  for (const double scale : {1.0, 1.5}) {
    painter.setScene(scene, scale, sampleTheme());
    QImage screen = painter.render();
    const QImage before = screen.copy();
    const auto& window = scene.tiles[0].windows[0];
    const Flight flight(window, {500.3, 300.7, 73.4, 52.6}, window.rect);
    for (int step = 0; step < 10; ++step) {
      QPainter on(&screen);
      flight.paint(on, painter, step / 10.0);
      on.end();
      ASSERT_NE(difference(screen, before), "") << step;
      QPainter under(&screen);
      painter.paint(under, flight.bounds(painter, step / 10.0));
      under.end();
      ASSERT_EQ(difference(screen, before), "") << step;
    }
  }
}

}  // namespace
}  // namespace tessaspaces
