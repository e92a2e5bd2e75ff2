#include <gmock/gmock.h>

#include "platform/x11/DesktopSteps.h"

namespace tessaspaces {
namespace {

using namespace std::chrono_literals;
using testing::Eq;
using testing::Optional;

constexpr auto left = SwipeSide::left;
constexpr auto right = SwipeSide::right;

class PendingStepsTest : public testing::Test {
 protected:
  std::optional<SpaceID> next(SpaceID shown, SwipeSide side, std::chrono::milliseconds at = 0ms,
                              std::string_view display = "main") {
    return steps.next(display, spaces, shown, side, begin + at);
  }
  std::vector<SpaceID> spaces{11, 12, 13, 14, 15};
  PendingSteps steps;
  const PendingSteps::Time begin{};
};

TEST_F(PendingStepsTest, CountFromTheLastThatWasAskedFor) {
  EXPECT_THAT(next(11, right), Optional(12));
  EXPECT_THAT(next(11, right, 10ms), Optional(13)) << "nothing has arrived";
  EXPECT_THAT(next(12, right, 20ms), Optional(14)) << "the first has";
  EXPECT_THAT(next(13, left, 30ms), Optional(13));
  EXPECT_THAT(next(13, left, 40ms), Optional(12)) << "on the way to the right or back again, the last one counts";
  EXPECT_THAT(steps.display(), Optional(Eq("main")));
  EXPECT_THAT(next(12, left, 50ms), Optional(11));
  EXPECT_EQ(next(12, left, 60ms), std::nullopt) << "the end";
}

TEST_F(PendingStepsTest, CountFromADesktopToWhichTheDisplayIsPulledBack) {
  EXPECT_THAT(next(11, right), Optional(12));
  EXPECT_THAT(next(11, right, 10ms), Optional(13));
  EXPECT_THAT(next(11, right, 20ms), Optional(14));
  steps.arrived("main", 13);
  steps.arrived("main", 12);  // an older look
  steps.arrived("main", 15);  // not on the way
  EXPECT_THAT(next(13, right, 30ms), Optional(15)) << "still on the way";
  EXPECT_THAT(next(12, right, 40ms), Optional(13)) << "pulled back, short of the last";
  steps.arrived("main", 13);
  EXPECT_THAT(next(12, right, 50ms), Optional(13)) << "pulled back from the last";
}

TEST_F(PendingStepsTest, CountFromWhatIsShownWhenTheRestIsVoid) {
  EXPECT_THAT(next(11, right), Optional(12));
  EXPECT_THAT(next(11, right, 499ms), Optional(13));
  EXPECT_THAT(next(11, right, 1000ms), Optional(12)) << "ignored, or lost";
  EXPECT_THAT(next(15, left, 1001ms), Optional(14)) << "the user went elsewhere";
  EXPECT_THAT(next(12, right, 1002ms, "other"), Optional(13));

  steps.arrived("main", 13);
  EXPECT_THAT(steps.display(), Optional(Eq("other")));
  steps.arrived("other", 13);
  EXPECT_EQ(steps.display(), std::nullopt);
  EXPECT_THAT(next(12, right, 1003ms, "other"), Optional(13)) << "went back after it had arrived";

  spaces = {12, 13};
  EXPECT_EQ(next(13, right, 1004ms, "other"), std::nullopt);
  EXPECT_EQ(next(99, right, 1005ms, "other"), std::nullopt) << "not one of the display's";
}

}  // namespace
}  // namespace tessaspaces
