#include <gmock/gmock.h>

#include <limits>

#include "model/Navigation.h"
#include "support/CoreTest.h"

namespace tessaspaces {
namespace {

using enum GridDirection;
using enum CirculationJoin;
using Spaces::neighbor;
constexpr GridDirection directions[] = {left, right, up, down};
constexpr CirculationJoin joins[] = {nextRow, sameRow};

class Navigation : public CoreTest {};

TEST_F(Navigation, TheBuiltInTableHoldsAndSaysSo) {
  start("one 800x600 | A*");
  const auto result = Spaces::runCirculationSelfTest();
  EXPECT_EQ(result.cases, 26);
  EXPECT_EQ(result.failures, 0) << result.report;
  EXPECT_THAT(result.report, testing::HasSubstr("26"));
  EXPECT_THAT(takeLog(), testing::ElementsAre("[INFO] SELF-TEST CIRCULATION: 26/26 passed"));
}

TEST_F(Navigation, OutsideTheGridThereIsNoNeighbor) {
  constexpr auto huge = std::numeric_limits<std::int64_t>::max();
  const struct {
    std::int64_t index, count, columns;
  } cases[] = {{0, 0, 4}, {0, 12, 0}, {0, 12, -1}, {-1, 12, 4}, {12, 12, 4}, {huge, 12, 4}, {0, -3, 4}};
  for (const auto& c : cases) {
    for (const auto direction : directions) {
      for (const auto join : joins) {
        EXPECT_EQ(neighbor(c.index, direction, c.count, c.columns, true, true, join), std::nullopt)
            << c.index << " of " << c.count << " in " << c.columns;
      }
    }
  }
  // One short row, however wide the grid claims to be.
  EXPECT_EQ(neighbor(2, right, 3, huge, true, true, sameRow), 0);
  EXPECT_EQ(neighbor(2, down, 3, huge, true, true, nextRow), 2);
  EXPECT_EQ(neighbor(2, up, 3, huge, true, true, nextRow), 2);
}

TEST_F(Navigation, DegenerateGrids) {
  for (const auto join : joins) {
    for (const auto direction : directions) {
      EXPECT_EQ(neighbor(0, direction, 1, 4, true, true, join), 0);
      EXPECT_EQ(neighbor(0, direction, 1, 4, false, true, join), std::nullopt);
    }
    EXPECT_EQ(neighbor(1, right, 3, 1, false, false, join), std::nullopt);
    EXPECT_EQ(neighbor(6, down, 10, 4, true, true, join), 2) << "into the gap wraps, it never clamps";
  }
  EXPECT_EQ(neighbor(1, right, 3, 1, true, false, sameRow), 1);
  EXPECT_EQ(neighbor(2, right, 3, 1, true, false, nextRow), 0);
}

/// What must hold in every grid, whatever the switches: checked against each other, not against a copy of
/// the arithmetic.
TEST_F(Navigation, InvariantsOfEveryGrid) {
  for (std::int64_t count = 1; count <= 17; ++count) {
    for (std::int64_t columns = 1; columns <= 6; ++columns) {
      for (std::int64_t i = 0; i < count; ++i) {
        SCOPED_TRACE(testing::Message() << i << " of " << count << " in " << columns);
        for (const auto join : joins) {
          // Right and left undo each other.
          const auto r = neighbor(i, right, count, columns, true, false, join);
          ASSERT_TRUE(r);
          EXPECT_EQ(neighbor(*r, left, count, columns, true, false, join), i);
          // Wrapping up or down stays in the column, and finds somebody always.
          for (const auto direction : {up, down}) {
            const auto v = neighbor(i, direction, count, columns, true, true, join);
            ASSERT_TRUE(v);
            EXPECT_EQ(*v % columns, i % columns);
            EXPECT_EQ(neighbor(i, direction, count, columns, true, false, join),
                      neighbor(i, direction, count, columns, false, true, join));
            EXPECT_EQ(v, neighbor(i, direction, count, columns, true, true, join == nextRow ? sameRow : nextRow));
          }
          // Without circulation a move never leaves its row or its column.
          if (const auto inside = neighbor(i, right, count, columns, false, true, join)) {
            EXPECT_EQ(*inside / columns, i / columns);
            EXPECT_EQ(inside, r);
          }
        }
        EXPECT_EQ(neighbor(i, right, count, columns, true, true, nextRow), (i + 1) % count);
        EXPECT_EQ(*neighbor(i, right, count, columns, true, true, sameRow) / columns, i / columns);
      }
    }
  }
}

TEST_F(Navigation, TheShortFormFollowsTheSettings) {
  start("one 800x600 | A*");
  EXPECT_EQ(neighbor(3, right, 12, 4), 4);  // the defaults: on, next row, not vertically
  EXPECT_EQ(neighbor(1, up, 12, 4), std::nullopt);
  put("tessaspaces.circulation.vertical", 1);
  put("tessaspaces.circulation.join", 1);
  EXPECT_EQ(neighbor(3, right, 12, 4), 0);
  EXPECT_EQ(neighbor(1, up, 12, 4), 9);
  put("tessaspaces.circulation.enabled", 0);
  EXPECT_EQ(neighbor(3, right, 12, 4), std::nullopt);
  EXPECT_EQ(neighbor(1, up, 12, 4), std::nullopt);
}

}  // namespace
}  // namespace tessaspaces
