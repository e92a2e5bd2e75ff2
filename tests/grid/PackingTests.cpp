#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "grid/ExplodedPacking.h"
#include "grid/Overlap.h"
#include "grid/SimpleStrategies.h"
#include "grid/WindowSets.h"

namespace tessaspaces {
namespace {

using namespace test;

constexpr Rect tile{20, 64, 440, 248};

/// What holds for every packing whatsoever.
void expectSound(const Rect& content, const std::vector<Rect>& natural, double limit, const Packing& packing) {
  ASSERT_EQ(packing.rects.size(), natural.size());
  EXPECT_LE(packing.score, limit);
  for (std::size_t i = 0; i < natural.size(); ++i) {
    const auto& rect = packing.rects[i];
    if (natural[i].isEmpty()) {
      EXPECT_EQ(rect, Rect()) << i;
      continue;
    }
    EXPECT_NEAR(rect.width, natural[i].width * packing.score, 1e-9) << i;
    EXPECT_NEAR(rect.height, natural[i].height * packing.score, 1e-9) << i;
    EXPECT_FALSE(rect.isEmpty()) << i;
    EXPECT_TRUE(rect.minX() >= content.minX() && rect.maxX() <= content.maxX() && rect.minY() >= content.minY() &&
                rect.maxY() <= content.maxY())
        << i << " at " << rect.x << "," << rect.y << " " << rect.width << "x" << rect.height;
    for (std::size_t j = 0; j < i; ++j) {
      if (rect.intersects(packing.rects[j])) ADD_FAILURE() << i << " covers " << j;
    }
  }
}

/// The part of the order among the windows' centres that is kept, 1: all. Pairs count by their distance.
double orderKept(const std::vector<Rect>& natural, const std::vector<Rect>& packed) {
  double kept = 0;
  double all = 0;
  for (std::size_t i = 0; i < natural.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const double dx = (natural[i].center().x - natural[j].center().x) / tile.width;
      const double dy = (natural[i].center().y - natural[j].center().y) / tile.height;
      all += std::abs(dx) + std::abs(dy);
      if (dx * (packed[i].center().x - packed[j].center().x) >= 0) kept += std::abs(dx);
      if (dy * (packed[i].center().y - packed[j].center().y) >= 0) kept += std::abs(dy);
    }
  }
  return all > 0 ? kept / all : 1;
}

class PackingOf : public testing::TestWithParam<int> {};

TEST_P(PackingOf, IsSoundAndNotSmallerThanAnySimpleOne) {
  for (const auto& set : windowSets()) {
    for (std::uint64_t seed = 1; seed <= (GetParam() < 50 ? 3U : 1U); ++seed) {
      SCOPED_TRACE(set.name + ", seed " + std::to_string(seed));
      Dice dice(seed * 1000 + static_cast<std::uint64_t>(GetParam()));
      const auto natural = previews(tile, set.make(GetParam(), dice));
      const double simple = bestSimpleScale({tile.width, tile.height}, natural);
      // Also where there is more room than the windows can use, and less.
      for (const double limit : {usualLimit(tile, natural), 0.5 * usualLimit(tile, natural), 1.0}) {
        const auto packing = packExploded(tile, natural, limit);
        expectSound(tile, natural, limit, packing);
        EXPECT_GE(packing.score, std::min(limit, simple) * (1 - 1e-6)) << "limit " << limit;
        if (HasFailure()) return;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Windows, PackingOf, testing::Values(1, 2, 3, 4, 6, 9, 14, 23, 41, 70, 120, 200, 260));

TEST(Packing, ListOrderMayBeTheOnlyOneThatFits) {
  // Five rows that fill the tile to the last point, each of windows of its own height, scattered all over.
  Dice dice(2);
  std::vector<Rect> natural;
  for (int row = 0; row < 5; ++row) {
    const double height = tile.height * (row + 1) / 15;
    double left = 0;
    for (int i = 0; i < 12; ++i) {
      const double right = i == 11 ? tile.width : tile.width * (i + dice.between(0.6, 1.4)) / 12;
      natural.push_back({tile.x + dice.between(0, tile.width - (right - left)),
                         tile.y + dice.between(0, tile.height - height), right - left, height});
      left = right;
    }
  }
  const auto packing = packExploded(tile, natural, 1);
  expectSound(tile, natural, 1, packing);
  EXPECT_NEAR(packing.score, 1, 1e-6);
}

TEST(Packing, KeepsThePicture) {
  const struct {
    const char* set;
    int count;
    double order;
  } cases[] = {{"scattered", 3, 0.85},  {"scattered", 8, 0.85},  {"scattered", 30, 0.85},
               {"scattered", 200, 0.9}, {"scattered", 400, 0.9}, {"wild", 30, 0.85},
               {"wild", 200, 0.85},     {"one large", 6, 0.8},   {"cascade", 12, 0.8}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.set) + " " + std::to_string(c.count));
    double kept = 0;
    constexpr int seeds = 10;
    for (const auto& set : windowSets()) {
      if (set.name != c.set) continue;
      for (int seed = 0; seed < seeds; ++seed) {
        Dice dice(static_cast<std::uint64_t>(seed) * 77 + 5);
        const auto natural = previews(tile, set.make(c.count, dice));
        kept += orderKept(natural, packExploded(tile, natural, usualLimit(tile, natural)).rects) / seeds;
      }
    }
    RecordProperty(std::string(c.set) + std::to_string(c.count), std::to_string(kept));
    EXPECT_GE(kept, c.order);
  }
}

TEST(Packing, TiledWindowsThatOverlapALittleOnlyShrink) {
  std::vector<Rect> parts;
  Dice dice(3);
  for (int i = 0; i < 20; ++i) {
    parts.push_back({0.19 * (i % 5) + dice.between(0, 0.02), 0.23 * (i / 5) + dice.between(0, 0.02), 0.22, 0.28});
  }
  const auto natural = previews(tile, parts);
  const auto packing = packExploded(tile, natural, usualLimit(tile, natural));
  EXPECT_DOUBLE_EQ(packing.score, usualLimit(tile, natural));
  for (std::size_t i = 0; i < natural.size(); ++i) {
    const auto from = natural[i].center();
    const auto to = packing.rects[i].center();
    EXPECT_LT(std::hypot(to.x - from.x, to.y - from.y), 0.06 * tile.width) << i;
  }
}

TEST(Packing, WhoIsInNobodysWayStays) {
  const auto natural =
      previews(tile, {{0.7, 0.1, 0.2, 0.3}, {0.75, 0.2, 0.2, 0.3}, {0.05, 0.1, 0.3, 0.4}, {0.1, 0.7, 0.2, 0.2}});
  const auto packing = packExploded(tile, natural, 1);
  EXPECT_EQ(packing.score, 1);
  for (const std::size_t alone : {2U, 3U}) {
    EXPECT_NEAR(packing.rects[alone].x, natural[alone].x, 1e-6);
    EXPECT_NEAR(packing.rects[alone].y, natural[alone].y, 1e-6);
  }
  expectSound(tile, natural, 1, packing);
}

TEST(Packing, LeavesAirWhereThereIsRoom) {
  const auto natural = previews(tile, std::vector<Rect>(9, {0, 0, 1, 1}));
  const auto packing = packExploded(tile, natural, usualLimit(tile, natural));
  auto grown = packing.rects;
  for (auto& rect : grown) rect = rect.inset(-1.5, -1.5);
  EXPECT_FALSE(hasOverlap(grown));
  expectSound(tile.inset(1.5, 1.5), natural, 1, packing);
}

TEST(Packing, ASmallStepOfOneWindowRarelyMovesTheOthers) {
  int calm = 0;
  constexpr int tries = 40;
  for (int i = 0; i < tries; ++i) {
    Dice dice(static_cast<std::uint64_t>(i) + 11);
    auto natural = previews(tile, windowSets().front().make(4 + i % 20, dice));
    const double limit = usualLimit(tile, natural);
    const auto before = packExploded(tile, natural, limit);
    natural[0].x += natural[0].center().x < tile.center().x ? 0.25 : -0.25;
    const auto after = packExploded(tile, natural, limit);
    double most = 0;
    for (std::size_t k = 1; k < natural.size(); ++k) {
      most = std::max(
          {most, std::abs(before.rects[k].x - after.rects[k].x), std::abs(before.rects[k].y - after.rects[k].y)});
    }
    calm += most < 2;
  }
  EXPECT_GE(calm, tries * 9 / 10);
}

TEST(Packing, EmptyRectanglesKeepTheirPlaceInTheListOnly) {
  const auto windows = previews(tile, {{0, 0, 0.8, 0.8}, {0.1, 0.1, 0.8, 0.8}});
  const auto alone = packExploded(tile, windows, 0.8);
  const auto among = packExploded(tile, std::vector<Rect>{{}, windows[0], {}, windows[1], {50, 80, 0, 10}}, 0.8);
  EXPECT_EQ(among.rects, (std::vector<Rect>{{}, alone.rects[0], {}, alone.rects[1], {}}));
  EXPECT_EQ(among.score, alone.score);
  EXPECT_EQ(packExploded(tile, std::vector<Rect>(3), 0.7).rects, std::vector<Rect>(3));
}

TEST(Packing, SurvivesWhatMakesNoSense) {
  constexpr double infinite = std::numeric_limits<double>::infinity();
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<Rect> two{{0, 0, 100, 50}, {10, 10, 100, 50}};
  for (const auto& content : {Rect{}, Rect{5, 5, 0, 10}, Rect{5, 5, -1, 10}, Rect{0, 0, infinite, 10}}) {
    const auto packing = packExploded(content, two, 1);
    EXPECT_EQ(packing.rects, std::vector<Rect>(2));
    EXPECT_EQ(packing.score, 0);
  }
  for (const double limit : {0.0, -1.0, nan}) EXPECT_EQ(packExploded(tile, two, limit).rects, std::vector<Rect>(2));
  EXPECT_EQ(packExploded(tile, std::vector<Rect>{{0, 0, infinite, 50}, {0, nan, 5, 5}}, 1).rects, std::vector<Rect>(2));

  // Far more than there is room for, and windows far larger than the tile or far away from it.
  const Rect tiny{100, 100, 9, 5};
  const std::vector<Rect> crowd(200, Rect{100, 100, 6, 5});
  expectSound(tiny, crowd, 0.2, packExploded(tiny, crowd, 0.2));
  const std::vector<Rect> giants{{-1e6, -1e6, 3e6, 1e6}, {1e7, 0, 5e5, 2e6}, {0, 0, 7, 7}};
  expectSound(tile, giants, 1, packExploded(tile, giants, 1));
}

TEST(Overlap, SeesWhatComparingAllPairsSees) {
  int overlapping = 0;
  for (std::uint64_t seed = 1; seed <= 400; ++seed) {
    Dice dice(seed);
    std::vector<Rect> rects;
    for (int i = 0; i < 6; ++i) {
      // On a coarse lattice, so that many touch and some are empty.
      const auto step = [&](int most) { return std::floor(dice.between(0, most)); };
      rects.push_back({step(9), step(9), step(4), step(4)});
    }
    bool expected = false;
    for (std::size_t i = 0; i < rects.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) expected = expected || rects[i].intersects(rects[j]);
    }
    EXPECT_EQ(hasOverlap(rects), expected) << "seed " << seed;
    overlapping += expected;
  }
  EXPECT_GT(overlapping, 50);
  EXPECT_LT(overlapping, 350);
}

}  // namespace
}  // namespace tessaspaces
