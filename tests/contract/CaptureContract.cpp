#include <algorithm>
#include <cmath>

#include "contract/ContractTest.h"
#include "contract/SimulatedDriver.h"
#ifdef TESSASPACES_CONTRACT_X11
#include "contract/X11Driver.h"
#endif

namespace tessaspaces::contract {

using testing::Contains;
using testing::IsNull;
using testing::NotNull;

namespace {

constexpr Quarters colorful{0xE02020, 0x20C020, 0x2040E0, 0xE0C020};
constexpr Quarters other{0x20C0C0, 0xC020C0, 0x808080, 0xF0F0F0};
constexpr Quarters third{0x104010, 0x401040, 0xA0E0A0, 0xE0A0E0};

/// The colours in the middles of the picture's quarters: well inside the window's own, whatever its frame adds.
Quarters quartersOf(const ImageRef& image) {
  Quarters colors{};
  if (!image) return colors;
  for (std::size_t i = 0; i < colors.size(); ++i) {
    const auto x = static_cast<std::size_t>(image->width) * (i % 2 == 0 ? 1 : 3) / 4;
    const auto y = static_cast<std::size_t>(image->height) * (i / 2 == 0 ? 1 : 3) / 4;
    colors.at(i) = image->pixels.at(y * static_cast<std::size_t>(image->width) + x) & 0xFFFFFF;
  }
  return colors;
}

class CaptureContract : public Contract {
 protected:
  WindowCapture& capture() { return platform().windowCapture(); }
  void beginCapture(const std::vector<Monitor>& monitors = {{"main"}}) {
    start(monitors);
    heard_ =
        capture().previewsChanged.connect([this](const auto& windows) { news.insert(windows.begin(), windows.end()); });
    ASSERT_TRUE(capture().begin());
  }
  ImageRef fresh(WindowID window) { return capture().previews(std::vector{window}).front(); }
  bool looksLike(WindowID window, const Quarters& colors) {
    return driver->until([&] {
      if (quartersOf(fresh(window)) == colors) return true;
      // It was drawn for the size that it had then, which may not be the last that it gets.
      if (driver->tiles()) driver->draw(window, colors);
      return false;
    });
  }
  WindowID openDrawn(const Quarters& colors, int desktop = 0) {
    const auto window = driver->open({.title = "drawn", .desktop = desktop});
    driver->draw(window, colors);
    return window;
  }
  void show(int desktop) {
    driver->showDesktop(desktop);
    driver->settle();
  }

  std::set<WindowID> news;

 private:
  ScopedConnection heard_;
};

}  // namespace

TEST_P(CaptureContract, NothingIsCapturedBeforeTheBeginAndAfterTheEnd) {
  start();
  const auto window = openDrawn(colorful);
  driver->settle();
  const auto expectNothing = [&] {
    EXPECT_THAT(capture().preview(window), IsNull());
    EXPECT_THAT(fresh(window), IsNull());
    EXPECT_TRUE(std::holds_alternative<UnknownWallpaper>(capture().wallpaper(identifier(), current(), 100)));
    EXPECT_THAT(capture().screenContent(identifier(), 100), IsNull());
  };
  expectNothing();
  for (int time = 0; time < 2; ++time) {
    EXPECT_TRUE(capture().begin());
    EXPECT_TRUE(capture().begin()) << "again";
    EXPECT_TRUE(looksLike(window, colorful));
    capture().stop();
    expectNothing();
  }
}

TEST_P(CaptureContract, PreviewsShowTheWholeWindowInTheWantedSize) {
  beginCapture();
  const auto window = openDrawn(colorful);
  EXPECT_TRUE(looksLike(window, colorful));
  EXPECT_EQ(capture().preview(window), fresh(window)) << "nothing changed";
  driver->settle();
  const auto bounds = info(window)->bounds.value();
  const double aspect = *bounds.width / *bounds.height;
  for (const int side : {100, 37, 2000, PreviewLimits().longestSide}) {
    capture().setLimits({1, side});
    const auto image = fresh(window);
    ASSERT_THAT(image, NotNull());
    const int longest = static_cast<int>(std::max(*bounds.width, *bounds.height));
    const int titleBar = driver->tiles() ? 30 : 0;
    EXPECT_GE(std::max(image->width, image->height), std::min(side, longest));
    EXPECT_LE(std::max(image->width, image->height), std::min(side, longest + titleBar));
    EXPECT_NEAR(image->width, image->height * aspect, 1 + aspect + titleBar) << side;
    EXPECT_EQ(image->pixels.size(), static_cast<std::size_t>(image->width * image->height));
    EXPECT_EQ(quartersOf(image), colorful) << side;
    EXPECT_TRUE(
        std::all_of(image->pixels.begin(), image->pixels.end(), [](auto pixel) { return pixel >> 24U == 255; }));
  }
}

TEST_P(CaptureContract, PreviewsAreAPartOfTheWindowsSizeButNotAboveTheLimit) {
  beginCapture();
  const auto window = openDrawn(colorful);
  EXPECT_TRUE(looksLike(window, colorful));
  driver->settle();
  capture().setLimits({1, 100'000});
  const auto whole = fresh(window);
  ASSERT_THAT(whole, NotNull());
  const double longest = std::max(whole->width, whole->height);
  for (const double scale : {0.5, 0.13, 1.0}) {
    capture().setLimits({scale, 300});
    const auto image = fresh(window);
    ASSERT_THAT(image, NotNull());
    EXPECT_NEAR(std::max(image->width, image->height), std::min(longest * scale, 300.0), 1) << scale;
    EXPECT_EQ(quartersOf(image), colorful) << scale;
    EXPECT_EQ(fresh(window), image) << "the same limits again change nothing";
    capture().setLimits({scale, 300});
    EXPECT_EQ(fresh(window), image);
  }
  for (const auto& nonsense : {PreviewLimits{0, 0}, PreviewLimits{-1, -5}, PreviewLimits{std::nan(""), 50}}) {
    capture().setLimits(nonsense);
    EXPECT_THAT(fresh(window), NotNull());
  }
}

TEST_P(CaptureContract, AHiddenWindowKeepsWhatItLastShowed) {
  beginCapture();
  const auto window = openDrawn(colorful);
  EXPECT_TRUE(looksLike(window, colorful));
  driver->draw(window, other);
  show(1);
  EXPECT_TRUE(driver->until([&] { return quartersOf(capture().preview(window)) == other; })) << "without being asked";
  driver->draw(window, third);
  EXPECT_EQ(quartersOf(fresh(window)), other) << "what nobody can see";
  show(0);
  EXPECT_TRUE(looksLike(window, third));
  show(2);
  EXPECT_EQ(quartersOf(fresh(window)), third);
  capture().setLimits({1, 50});
  EXPECT_EQ(quartersOf(fresh(window)), third) << "a hidden one stays as it is";
}

TEST_P(CaptureContract, AWindowThatWasNeverOnScreenHasNoPreview) {
  beginCapture();
  const auto window = openDrawn(colorful, 2);
  driver->settle();
  EXPECT_THAT(fresh(window), IsNull());
  show(2);
  EXPECT_TRUE(looksLike(window, colorful));
  show(0);
  EXPECT_EQ(quartersOf(fresh(window)), colorful);
}

TEST_P(CaptureContract, ChangesAreAnnounced) {
  beginCapture();
  const auto still = driver->open({.title = "still"});
  const auto window = openDrawn(colorful);
  EXPECT_TRUE(driver->until([&] { return news.contains(window) && capture().preview(window); })) << "the first one";
  EXPECT_TRUE(looksLike(window, colorful));
  EXPECT_TRUE(driver->until([&] { return news.contains(still) && capture().preview(still); }));
  for (const auto& colors : {other, third}) {
    fresh(window);
    fresh(still);
    driver->settle();
    news.clear();
    driver->draw(window, colors);
    EXPECT_TRUE(driver->until([&] { return news.contains(window); }));
    EXPECT_TRUE(looksLike(window, colors));
  }
}

TEST_P(CaptureContract, AClosedWindowTakesItsPreviewWithIt) {
  beginCapture();
  const auto shown = driver->open({.title = "shown"});
  const auto hidden = openDrawn(other);
  driver->draw(shown, colorful);
  EXPECT_TRUE(looksLike(shown, colorful) && looksLike(hidden, other));
  driver->close(shown);
  EXPECT_TRUE(driver->until([&] { return !capture().preview(shown) && news.contains(shown); }));
  show(1);
  EXPECT_THAT(fresh(hidden), NotNull());
  if (driver->tiles()) show(0);  // i3 does not notice when a window on another workspace goes
  driver->close(hidden);
  EXPECT_TRUE(driver->until([&] { return !fresh(hidden); }));
  const auto all = capture().previews(std::vector<WindowID>{hidden, 0, 0x7FFFFFF0, shown});
  EXPECT_THAT(all, testing::ElementsAre(IsNull(), IsNull(), IsNull(), IsNull()));
}

TEST_P(CaptureContract, AResizedWindowsPreviewHasItsNewShape) {
  beginCapture();
  const auto window = openDrawn(colorful);
  EXPECT_TRUE(looksLike(window, colorful));
  if (driver->tiles()) {
    // It has the screen to itself; a second one takes half of it.
    const int before = fresh(window)->width;
    const auto beside = openDrawn(other);
    driver->draw(window, colorful);
    EXPECT_TRUE(driver->until([&] { return fresh(window)->width < before; }));
    EXPECT_TRUE(looksLike(window, colorful) && looksLike(beside, other));
    return;
  }
  for (const auto& [width, height] : {std::pair{300, 600}, std::pair{900, 200}, std::pair{901, 333}}) {
    driver->resize(window, width, height);
    EXPECT_TRUE(driver->until([&] {
      const auto image = fresh(window);
      return std::abs(double(image->width) / image->height - double(width) / height) < 0.6;
    }));
    EXPECT_TRUE(looksLike(window, colorful));
  }
}

TEST_P(CaptureContract, TheScreensContentIsThatOfOneDisplay) {
  beginCapture({{"one", 0, 0, 960, 1080}, {"two", 960, 0, 960, 1080}});
  for (const std::size_t index : {0U, 1U}) {
    const auto name = identifier(index);
    const auto full = capture().screenContent(name, 0);
    ASSERT_THAT(full, NotNull());
    EXPECT_EQ(std::pair(full->width, full->height), std::pair(960, 1080));
    const auto small = capture().screenContent(name, 108);
    ASSERT_THAT(small, NotNull());
    EXPECT_EQ(std::pair(small->width, small->height), std::pair(96, 108));
    EXPECT_EQ(small->pixels.front() >> 24U, 255U);
  }
  EXPECT_THAT(capture().screenContent("elsewhere", 0), IsNull());
  EXPECT_TRUE(std::holds_alternative<UnknownWallpaper>(capture().wallpaper("elsewhere", current(), 0)));
}

INSTANTIATE_TEST_SUITE_P(Simulated, CaptureContract, testing::Values(simulatedBackend()),
                         testing::PrintToStringParamName());
#ifdef TESSASPACES_CONTRACT_X11
INSTANTIATE_TEST_SUITE_P(X11, CaptureContract, testing::ValuesIn(x11CaptureBackends()),
                         testing::PrintToStringParamName());
#endif

}  // namespace tessaspaces::contract
