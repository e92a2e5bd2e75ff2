#include <gmock/gmock.h>

#include <functional>
#include <limits>

#include "platform/gestures/FieldEvent.h"
#include "platform/gestures/SwipeReader.h"
#include "platform/gestures/SwipeTracker.h"

namespace tessaspaces {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t now = 0x0102030405060708;
constexpr int velocityX = 129;

/// What a driver reports of fingers that move left: at (0.5, 0), with a progress of -0.25, lifted with a velocity of
/// -2.
Bytes report(int phase) {
  const auto last = static_cast<std::uint8_t>(phase);
  const bool ended = phase == 4;
  Bytes bytes{8, 7, 6, 5, 4, 3, 2, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  const Bytes swipe{static_cast<std::uint8_t>(ended ? 2 : 1),
                    0,
                    0,
                    0,
                    0x28,
                    0,
                    0,
                    0,
                    0x17,
                    0,
                    0,
                    0,
                    0,
                    0,
                    0,
                    last,  //
                    0,
                    0,
                    0,
                    0,
                    0,
                    0x80,
                    0,
                    0,
                    0,
                    0,
                    0,
                    0,
                    0,
                    0,
                    0,
                    0,
                    7,
                    0,
                    0,
                    0,
                    1,
                    0,
                    3,
                    0,
                    0,
                    0xC0,
                    0xFF,
                    0xFF};
  const Bytes velocity{0x1C, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0xFE, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0};
  bytes.insert(bytes.end(), swipe.begin(), swipe.end());
  if (ended) bytes.insert(bytes.end(), velocity.begin(), velocity.end());
  return bytes;
}

FieldEvent bare(int phase, std::uint64_t timestamp = now) {
  FieldEvent event(timestamp);
  event.setInteger(55, 30);
  event.setInteger(110, 23);
  event.setInteger(115, 7);
  event.setInteger(123, 1);
  event.setDouble(124, -0.25);
  event.setDouble(125, 0.5);
  event.setInteger(132, phase);
  if (phase == 4) event.setDouble(velocityX, -2);
  return event;
}

std::unique_ptr<FieldEvent> withRecord(const FieldEvent& event, const Bytes& payload) {
  auto bytes = event.serialized();
  bytes.insert(bytes.end(), {0, static_cast<std::uint8_t>(payload.size()), 0x10, 0x6D});
  bytes.insert(bytes.end(), payload.begin(), payload.end());
  return FieldEvent::fromBytes(bytes);
}

std::unique_ptr<FieldEvent> swipeEvent(int phase) {
  return withRecord(bare(phase), report(phase));
}

TEST(FieldEvent, IsTheSameAfterItsBytes) {
  FieldEvent event(77);
  event.setInteger(55, std::numeric_limits<std::int64_t>::min());
  event.setInteger(-3, 5);
  event.setDouble(124, -0.0001);
  event.setInteger(110, 1);
  event.setDouble(110, 23.9);
  const auto copy = withRecord(event, {1, 2, 3});
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->timestamp(), 77U);
  EXPECT_EQ(copy->integer(55), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(copy->integer(-3), 5);
  EXPECT_EQ(copy->number(124), -0.0001);
  EXPECT_EQ(copy->integer(110), 23) << "the last setting counts, whatever its kind";
  EXPECT_EQ(copy->number(1), 0);
  EXPECT_THAT(copy->appended(0x106D).value(), testing::ElementsAre(1, 2, 3));
  EXPECT_FALSE(copy->appended(0x106E));
  EXPECT_EQ(FieldEvent::fromBytes(copy->serialized())->serialized(), copy->serialized());
  EXPECT_FALSE(withRecord(*copy, {4})->appended(0x106D)) << "which of the two?";
  for (const double beyond : {0x1p63, -0x1.1p63, std::numeric_limits<double>::quiet_NaN()}) {
    event.setDouble(1, beyond);
    EXPECT_EQ(event.integer(1), 0) << beyond;
  }
}

TEST(FieldEvent, RefusesBytesOfAnotherForm) {
  const Bytes good = swipeEvent(4)->serialized();
  const std::size_t recordStart = good.size() - report(4).size() - 4;
  for (std::size_t size = recordStart + 1; size < good.size(); ++size) {
    EXPECT_EQ(FieldEvent::fromBytes({good.data(), size}), nullptr) << size << " bytes of " << good.size();
  }
  for (const Bytes& bytes :
       {Bytes{}, Bytes{0, 0, 2}, Bytes{0, 0, 0, 3}, Bytes{0, 0, 0, 2, 0}, Bytes{0, 0, 0, 2, 0, 0, 0, 1},
        Bytes{0, 0, 0, 2, 0, 1, 0, 2, 9}, Bytes{0, 0, 0, 2, 0xFF, 0xFF, 0x10, 0x6D}}) {
    EXPECT_EQ(FieldEvent::fromBytes(bytes), nullptr) << testing::PrintToString(bytes);
  }
  EXPECT_NE(FieldEvent::fromBytes(Bytes{0, 0, 0, 2}), nullptr) << "no field is set";
}

TEST(SwipeReader, ReadsWhatADriverReports) {
  const auto began = readSwipe(*swipeEvent(1));
  ASSERT_TRUE(began);
  EXPECT_EQ(began->phase, SwipePhase::began);
  EXPECT_EQ(began->progress, -0.25);
  EXPECT_EQ(began->positionX, 0.5);
  EXPECT_EQ(began->mask, 7U);
  EXPECT_EQ(began->motion, 1);
  EXPECT_EQ(began->timestamp, now);
  EXPECT_EQ(readSwipe(*swipeEvent(4)).value_or(DockSwipe{}).velocityX, -2);
  // An event that carries no time of its own has that of the report.
  EXPECT_EQ(readSwipe(*withRecord(bare(2, 0), report(2))).value_or(DockSwipe{}).timestamp, now);
}

TEST(SwipeReader, RefusesAnyOtherByte) {
  for (const int phase : {1, 2, 4}) {
    const auto good = report(phase);
    for (std::size_t i = 0; i < good.size(); ++i) {
      for (int bit = 0; bit < 8; ++bit) {
        auto wrong = good;
        wrong[i] = static_cast<std::uint8_t>(wrong[i] ^ (1 << bit));
        EXPECT_FALSE(readSwipe(*withRecord(bare(phase), wrong))) << "phase " << phase << ", byte " << i;
      }
    }
    for (std::size_t size = 0; size < good.size(); ++size) {
      EXPECT_FALSE(readSwipe(*withRecord(bare(phase), {good.begin(), good.begin() + static_cast<int>(size)}))) << size;
    }
    auto longer = good;
    longer.push_back(0);
    EXPECT_FALSE(readSwipe(*withRecord(bare(phase), longer)));
  }
  EXPECT_FALSE(readSwipe(bare(1))) << "a bare event";
}

TEST(SwipeReader, RefusesFieldsThatTheReportDoesNotBearOut) {
  const std::vector<std::function<void(FieldEvent&)>> changes{
      [](auto& event) { event.setInteger(55, 29); },
      [](auto& event) { event.setInteger(110, 22); },
      [](auto& event) { event.setInteger(132, 2); },
      [](auto& event) { event.setInteger(132, 3); },
      [](auto& event) { event.setInteger(115, 1LL << 32 | 7); },
      [](auto& event) { event.setInteger(123, 2); },
      [](auto& event) { event.setInteger(123, -0xFFFF); },
      [](auto& event) { event.setDouble(124, 0.25); },
      [](auto& event) { event.setDouble(125, 65536.5); },
      [](auto& event) { event.setDouble(126, 1); },
      [](auto& event) { event.setDouble(velocityX, -2); },
      [](auto& event) { event.setDouble(124, std::numeric_limits<double>::quiet_NaN()); },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    auto event = bare(1);
    changes[i](event);
    EXPECT_FALSE(readSwipe(*withRecord(event, report(1)))) << i;
  }
}

/// What is posted, as letters: b, c, e for the events of a swipe to the left, g for the one that follows them.
std::optional<DockSwipe> track(SwipeTracker& tracker, std::string_view posted, std::uint64_t at = now) {
  std::optional<DockSwipe> completed;
  for (const char letter : posted) {
    EXPECT_FALSE(completed) << "before the end of " << posted;
    FieldEvent companion;
    companion.setInteger(55, 29);
    const auto swipe = swipeEvent(letter == 'b' ? 1 : letter == 'c' ? 2 : 4);
    completed = tracker.take(letter == 'g' ? companion : *swipe, at);
  }
  return completed;
}

TEST(SwipeTracker, CompletesOnlyTheWholeSwipeInItsOrder) {
  struct Case {
    const char* posted;
    bool complete;
  };
  for (const auto& [posted, complete] :
       {Case{"bgcgeg", true}, Case{"bgbgcgeg", true}, Case{"ggbgcgeg", true}, Case{"bgcgbgcgeg", true},
        Case{"bgcge", false}, Case{"bcegg", false}, Case{"bgceg", false}, Case{"cgeg", false}, Case{"bgeg", false},
        Case{"bgcgceg", false}, Case{"bgcgcgeg", false}, Case{"egcgbg", false}, Case{"bggcgeg", false},
        Case{"bgcgge", false}, Case{"bcgeg", false}, Case{"eg", false}}) {
    SwipeTracker tracker;
    EXPECT_EQ(track(tracker, posted).has_value(), complete) << posted;
    // What came of the last one does not stand in the way of the next.
    EXPECT_TRUE(track(tracker, "bgcgeg")) << "after " << posted;
  }
}

TEST(SwipeTracker, TakesNoSwipeThatIsNotOneMovement) {
  constexpr std::uint64_t second = 1'000'000'000;
  SwipeTracker tracker;
  EXPECT_FALSE(track(tracker, "bgcgeg", now - 1)) << "in the future";
  EXPECT_FALSE(track(tracker, "bgcgeg", now + 11 * second)) << "long ago";
  EXPECT_TRUE(track(tracker, "bgcgeg", now + second));

  // The other way in the middle; then let go in the other direction, or standing still.
  const auto changedWith = [](int phase, double progress, double velocity) {
    auto event = bare(phase);
    event.setDouble(124, progress);
    event.setDouble(velocityX, velocity);
    auto payload = report(phase);
    const auto put = [&](std::size_t at, double value) {
      const auto bits = static_cast<std::uint32_t>(static_cast<std::int32_t>(value * 65536));
      for (std::size_t i = 0; i < 4; ++i) payload[at + i] = static_cast<std::uint8_t>(bits >> (8 * i));
    };
    put(64, progress);
    if (phase == 4) put(84, velocity);
    return withRecord(event, payload);
  };
  FieldEvent companion;
  companion.setInteger(55, 29);
  struct Case {
    double changed, ended, velocity;
    bool complete;
  };
  for (const auto& each : {Case{-0.25, -0.5, -1, true}, Case{0.25, -0.25, -2, false}, Case{-0.25, 0.25, 2, false},
                           Case{-0.25, -0.25, 2, false}, Case{-0.25, -0.25, 0, false}, Case{0, -0.25, -2, false}}) {
    track(tracker, "bg");
    tracker.take(*changedWith(2, each.changed, 0), now);
    tracker.take(companion, now);
    tracker.take(*changedWith(4, each.ended, each.velocity), now);
    EXPECT_EQ(tracker.take(companion, now).has_value(), each.complete) << each.changed << ' ' << each.velocity;
  }
}

TEST(SwipeTracker, FollowsTheFingersWithNaturalScrolling) {
  DockSwipe left;
  left.progress = -0.1;
  DockSwipe right;
  right.progress = 0.1;
  EXPECT_EQ(sideOf(left, true), SwipeSide::right);
  EXPECT_EQ(sideOf(right, true), SwipeSide::left);
  EXPECT_EQ(sideOf(left, false), SwipeSide::left);
  EXPECT_EQ(sideOf(right, false), SwipeSide::right);
}

}  // namespace
}  // namespace tessaspaces
