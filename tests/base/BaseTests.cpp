#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "base/Geometry.h"
#include "base/KeyCombo.h"
#include "base/Signal.h"

namespace tessaspaces {
namespace {

TEST(Geometry, SharedEdgesBelongToOneRectangleAndIntersectNothing) {
  const Rect left{0, 0, 100, 50};
  const Rect right{100, 0, 100, 50};
  EXPECT_TRUE(right.contains({100, 0}));
  EXPECT_FALSE(left.contains({100, 0}));
  EXPECT_FALSE(left.contains({0, 50}));
  EXPECT_FALSE(left.intersects(right));
  EXPECT_EQ(left.intersection({90, -10, 100, 20}), (Rect{90, 0, 10, 10}));
  EXPECT_EQ(left.intersection(right), Rect{});
}

TEST(Geometry, EmptyRectanglesNeitherContainNorIntersect) {
  for (const Rect empty : {Rect{}, Rect{10, 10, 0, 20}, Rect{10, 10, -5, 20},
                           Rect{10, 10, std::numeric_limits<double>::quiet_NaN(), 20}}) {
    EXPECT_FALSE(empty.contains({10, 10}));
    EXPECT_FALSE(empty.intersects({0, 0, 100, 100}));
    EXPECT_FALSE((Rect{0, 0, 100, 100}.intersects(empty)));
  }
  EXPECT_TRUE((Rect{0, 0, 3, 3}.inset(2, 0).isEmpty()));
}

TEST(KeyCombo, ReadsAsTheUserSeesIt) {
  const struct {
    KeyCombo combo;
    const char* text;
  } cases[] = {
      {{49, 0xA00}, "⌥⇧Space"},  // option before shift
      {{18, 0x1B00}, "⌃⌥⇧⌘1"},  {{18, 0x1800}, "⌃⌥1"},
      {{29, 0x100}, "⌘0"},      {{25, 0x100}, "⌘9"},
      {{126, 0x1000}, "⌃↑"},    {{0, 0x100}, "⌘?"},
      {{124, 0}, "—"},  // no modifier: never registered
      {KeyCombo::none(), "—"},  {{KeyCombo::noKeyCode, 0x100}, "—"},
  };
  for (const auto& test : cases) EXPECT_EQ(test.combo.display(), test.text) << test.combo.keyCode;
}

TEST(Signal, ObserversMayComeAndGoWhileItIsEmitted) {
  Signal<int> signal;
  std::vector<std::string> heard;
  ScopedConnection second, late;
  auto first = signal.connect([&](int value) {
    heard.push_back("first " + std::to_string(value));
    second.reset();
    if (value == 1) late = signal.connect([&](int v) { heard.push_back("late " + std::to_string(v)); });
  });
  second = signal.connect([&](int) { heard.emplace_back("second"); });
  signal.emit(1);
  signal.emit(2);
  EXPECT_EQ(heard, (std::vector<std::string>{"first 1", "first 2", "late 2"}));
}

TEST(Signal, AConnectionMayOutliveItsSignal) {
  auto signal = std::make_optional<Signal<>>();
  auto connection = signal->connect([] {});
  signal.reset();
  connection.reset();
}

}  // namespace
}  // namespace tessaspaces
