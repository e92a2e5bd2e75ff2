#include <gtest/gtest.h>

#include "platform/x11/ReadingPace.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;

constexpr xcb_window_t editor = 1;
constexpr xcb_window_t mail = 2;

class ReadingPaceTest : public testing::Test {
 protected:
  /// Reads when the pace allows, like an owner with a timer; the readings of a window that changes so often.
  int readings(Duration every, Duration during) {
    int count = 0;
    std::optional<TimePoint> due;
    const auto end = now + during;
    for (; now < end || due; now += 1ms) {
      const bool changes = now < end && (now - TimePoint()) % every == Duration::zero();
      if (!changes && (!due || now < *due)) continue;
      const auto wait = pace.take(editor, now);
      if (wait == Duration::zero()) ++count;
      due = wait == Duration::zero() ? std::nullopt : std::optional(now + wait);
    }
    return count;
  }

  ReadingPace pace;
  TimePoint now{1s};
};

TEST_F(ReadingPaceTest, TheLongerAWindowChangesTheRarerItIsRead) {
  for (const auto every : {1ms, 8ms, 16ms, 40ms}) {
    EXPECT_LE(readings(every, 10s), 105) << every.count();
    now += 1s;
    EXPECT_EQ(pace.take(editor, now), 0ms) << "after a rest at once";
    EXPECT_LE(pace.take(editor, now + 1ms), 10ms) << "and soon again";
    now += 1s;
  }
}

TEST_F(ReadingPaceTest, AnotherWindowIsReadAtOnce) {
  readings(8ms, 1s);
  EXPECT_GT(pace.take(editor, now), 10ms);
  EXPECT_EQ(pace.take(mail, now), 0ms);
  EXPECT_LE(pace.take(mail, now + 1ms), 10ms) << "its changes are its own";
  EXPECT_EQ(pace.take(XCB_NONE, now + 2ms), 0ms);
}

}  // namespace
}  // namespace tessaspaces
