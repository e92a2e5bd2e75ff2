#include <gtest/gtest.h>

#include <vector>

#include "app/HotCorners.h"

namespace tessaspaces {
namespace {

using Corner = std::optional<HotCorner>;
constexpr Rect screen{0, 0, 1000, 800};  // bottom-left origin: the top is y = 800
constexpr Point middle{500, 400};
constexpr Point topLeft{3, 797};
constexpr Point topRight{997, 797};

TEST(HotCorners, ACornerReachesFourteenPointsFromBothEdgesAndOneBeyond) {
  struct Case {
    Point pointer;
    Corner corner;
  };
  const Case cases[] = {
      {{14, 786}, HotCorner::topLeft},
      {{15, 786}, {}},
      {{14, 785}, {}},
      {{986, 786}, HotCorner::topRight},
      {{985, 800}, {}},
      {{14, 14}, HotCorner::bottomLeft},
      {{14, 15}, {}},
      {{986, 14}, HotCorner::bottomRight},
      {{0, 800}, HotCorner::topLeft},
      {{-1, 800.5}, HotCorner::topLeft},
      {{-1.5, 800}, {}},
      {{1000, 0}, HotCorner::bottomRight},
      {{1000.5, -1}, HotCorner::bottomRight},
      {{1001, 0}, {}},
      {middle, {}},
      {{1500, 797}, {}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(HotCorners::classify(c.pointer, screen), c.corner) << c.pointer.x << ", " << c.pointer.y;
  }
  // A screen that is smaller than two corners: they are asked in a fixed order.
  EXPECT_EQ(HotCorners::classify({5, 5}, Rect{0, 0, 10, 10}), HotCorner::topLeft);
  EXPECT_EQ(HotCorners::classify({-197, -103}, Rect{-200, -900, 100, 800}), HotCorner::topLeft);
}

TEST(HotCorners, FiresOnceOnEntering) {
  HotCorners corners;
  const std::vector<std::pair<Point, Corner>> steps = {
      {topLeft, HotCorner::topLeft},    // there from the start counts as entering
      {topLeft, {}},                    // staying
      {{8, 790}, {}},                   // moving about within it
      {middle, {}},                     // leaving
      {topLeft, HotCorner::topLeft},    // again
      {topRight, HotCorner::topRight},  // straight on to another
  };
  for (const auto& [pointer, entered] : steps) EXPECT_EQ(corners.tick(pointer, screen), entered);
}

TEST(HotCorners, RestingInACornerThatGetsAnActionIsNoEntering) {
  HotCorners corners;
  corners.skip();
  EXPECT_EQ(corners.tick(topLeft, screen), std::nullopt);
  EXPECT_EQ(corners.tick(topLeft, screen), std::nullopt);
  EXPECT_EQ(corners.tick(topRight, screen), HotCorner::topRight);
}

}  // namespace
}  // namespace tessaspaces
