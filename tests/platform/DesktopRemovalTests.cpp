#include <gmock/gmock.h>

#include <map>
#include <set>

#include "platform/x11/DesktopRemoval.h"

namespace tessaspaces {
namespace {

using namespace std::string_literals;
using Kind = PagerMessage::Kind;

constexpr xcb_window_t sticky = 99;

/// A window manager that does what pagers ask.
struct Desktop {
  std::uint32_t count = 0;
  std::uint32_t current = 0;
  std::map<xcb_window_t, std::uint32_t> windows;

  /// Two windows on each desktop, numbered 10 * desktop and one more, and one on all.
  Desktop(std::uint32_t desktops, std::uint32_t shown) : count(desktops), current(shown) {
    for (std::uint32_t desktop = 0; desktop < desktops; ++desktop) {
      windows[10 * desktop] = windows[10 * desktop + 1] = desktop;
    }
    windows[sticky] = allDesktops;
  }

  void obey(const PagerMessage& message) {
    switch (message.kind) {
      case Kind::moveWindow: windows.at(message.window) = message.value; break;
      case Kind::awaitMove: EXPECT_EQ(windows.at(message.window), message.value) << "a wait without end"; break;
      case Kind::showDesktop: current = message.value; break;
      case Kind::setCount: count = message.value; break;
    }
  }

  [[nodiscard]] std::set<xcb_window_t> inSight() const {
    std::set<xcb_window_t> seen;
    for (const auto& [window, desktop] : windows) {
      if (desktop == current || desktop == allDesktops) seen.insert(window);
    }
    return seen;
  }

  friend bool operator==(const Desktop&, const Desktop&) = default;
};

std::vector<WindowRecord> recordsOf(const Desktop& desktop) {
  std::vector<WindowRecord> records(1);  // one of which nothing is known
  for (const auto& [window, number] : desktop.windows) {
    WindowRecord record;
    record.window = window;
    record.desktop = number;
    records.push_back(record);
  }
  return records;
}

TEST(DesktopRemoval, MovesWhatLiesBehindWithoutAnythingFlashing) {
  for (std::uint32_t count = 2; count <= 6; ++count) {
    for (std::uint32_t removed = 0; removed + 1 < count; ++removed) {
      for (std::uint32_t shown = 0; shown < count; ++shown) {
        SCOPED_TRACE(testing::Message() << removed << " of " << count << " goes while " << shown << " is shown");
        const Desktop before(count, shown);
        const auto records = recordsOf(before);
        const DesktopState state{count, shown, records};
        const auto renumbered = [&](std::uint32_t desktop) { return desktop > removed ? desktop - 1 : desktop; };
        Desktop after(count, renumbered(shown));
        after.count = count - 1;
        for (auto& [window, desktop] : after.windows) {
          if (desktop != allDesktops) desktop = renumbered(desktop);
        }

        auto now = before;
        const auto first = before.inSight();
        const auto last = after.inSight();
        for (const auto& message : planRemoval(state, removed)) {
          now.obey(message);
          const auto seen = now.inSight();
          EXPECT_TRUE(std::includes(seen.begin(), seen.end(), first.begin(), first.end())) << "one vanished";
          EXPECT_TRUE(std::includes(last.begin(), last.end(), seen.begin(), seen.end())) << "one flashed up";
        }
        EXPECT_EQ(now, after);
        EXPECT_EQ(now.count, count - 1);

        for (const auto& message : planReturn(state, removed)) now.obey(message);
        EXPECT_EQ(now, before);
      }
    }
  }
}

TEST(DesktopRemoval, TakesOneNameOut) {
  const auto names = "one\0two\0\0four\0"s;
  struct Case {
    std::string names;
    std::uint32_t removed;
    std::string left;
  };
  const Case cases[] = {{names, 0, "two\0\0four\0"s},
                        {names, 1, "one\0\0four\0"s},
                        {names, 2, "one\0two\0four\0"s},
                        {names, 3, "one\0two\0\0"s},
                        {names, 4, names},
                        {names, 9, names},
                        {"one\0two"s, 1, "one\0"s},
                        {"one\0two"s, 0, "two"s},
                        {""s, 0, ""s}};
  for (const auto& [all, removed, left] : cases) EXPECT_EQ(withoutName(all, removed), left) << removed;
}

}  // namespace
}  // namespace tessaspaces
