#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QImage>
#include <QImageWriter>
#include <fstream>

#include "support/TemporaryFolder.h"
#include "ui/wallpapers/LearnedPicture.h"
#include "ui/wallpapers/WallpaperPainter.h"

namespace tessaspaces {
namespace {

constexpr std::uint32_t red = 0xFFFF0000;
constexpr std::uint32_t green = 0xFF00FF00;
constexpr std::uint32_t blue = 0xFF0000FF;
constexpr std::uint32_t white = 0xFFFFFFFF;

/// 1000 by 500 at the right of one as large; tiles are a tenth of it.
constexpr WallpaperPlace place{{1000, 0, 1000, 500}, {0, 0, 2000, 500}, 1};
constexpr ImageSize tile{100, 50};

std::uint32_t at(const ImageRef& image, int x, int y) {
  return image->pixels.at(static_cast<std::size_t>(y * image->width + x));
}

class WallpaperPainterTest : public ::testing::Test {
 protected:
  /// A picture whose left half is red and whose right half is blue.
  std::string halves(int width, int height, const char* name = "halves.png") {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(red);
    for (int y = 0; y < height; ++y) {
      for (int x = width / 2; x < width; ++x) image.setPixel(x, y, blue);
    }
    const auto path = (folder_ / name).string();
    EXPECT_TRUE(image.save(QString::fromStdString(path)));
    return path;
  }
  std::string file(const char* name, const std::string& bytes) {
    const auto path = (folder_ / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  static PaintedBackground paint(const WallpaperFile& wallpaper, ImageSize pixels = tile) {
    auto painted = paintWallpaper(wallpaper, place, pixels);
    EXPECT_EQ(ImageSize(painted.image->width, painted.image->height), pixels);
    for (const auto pixel : painted.image->pixels) EXPECT_EQ(pixel >> 24U, 0xFFU);
    return painted;
  }

  tessaspaces::testing::TemporaryFolder folder_;
};

TEST_F(WallpaperPainterTest, EachFitLaysThePictureAsTheDesktopDoes) {
  struct Case {
    const char* name;
    WallpaperFit fit;
    ImageSize picture;
    // In the middle row of the tile its left end and 30 and 70 pixels from there; and the top row.
    std::uint32_t edge, left, right, top;
  };
  for (const auto& each : {
           Case{"nothing of it", WallpaperFit::none, {1000, 500}, green, green, green, green},
           Case{"small in the middle", WallpaperFit::centered, {600, 300}, green, red, blue, green},
           Case{"too large in the middle", WallpaperFit::centered, {3000, 1500}, red, red, blue, red},
           Case{"again and again", WallpaperFit::tiled, {500, 250}, red, blue, red, blue},
           Case{"out of shape", WallpaperFit::stretched, {100, 400}, red, red, blue, red},
           Case{"whole, with a margin beside it", WallpaperFit::scaled, {400, 400}, green, red, blue, red},
           Case{"whole, with a margin above it", WallpaperFit::scaled, {400, 100}, red, red, blue, green},
           Case{"all over", WallpaperFit::zoomed, {300, 900}, red, red, blue, red},
           Case{"over both displays", WallpaperFit::spanned, {2000, 500}, blue, blue, blue, blue},
       }) {
    const WallpaperFile wallpaper{halves(each.picture.width, each.picture.height), each.fit, WallpaperColors::solid,
                                  green};
    const auto painted = paint(wallpaper);
    EXPECT_EQ(painted.complaint, "") << each.name;
    EXPECT_EQ(at(painted.image, 0, 25), each.edge) << each.name;
    EXPECT_EQ(at(painted.image, 30, 25), each.left) << each.name;
    EXPECT_EQ(at(painted.image, 70, 25), each.right) << each.name;
    EXPECT_EQ(at(painted.image, 40, 0), each.top) << each.name;
  }
}

TEST_F(WallpaperPainterTest, ATileOfAnotherShapeShowsTheMiddle) {
  const WallpaperFile wallpaper{halves(1000, 500), WallpaperFit::zoomed};
  const auto square = paint(wallpaper, {50, 50});
  EXPECT_EQ(at(square.image, 23, 25), red);
  EXPECT_EQ(at(square.image, 26, 25), blue);
  EXPECT_NEAR(square.color & 0xFFU, 0x80, 4) << "half of it is blue";
  paint(wallpaper, {1, 1});
  paint(wallpaper, {101, 47});
}

TEST_F(WallpaperPainterTest, ColorsAreOneOrAGradient) {
  const auto colors = [](WallpaperColors how) { return paint({"", WallpaperFit::none, how, 0xFF000000, white}); };
  EXPECT_EQ(colors(WallpaperColors::solid).color, 0xFF000000U);
  const auto across = colors(WallpaperColors::leftToRight);
  EXPECT_LT(at(across.image, 1, 25) & 0xFFU, 10U);
  EXPECT_GT(at(across.image, 98, 25) & 0xFFU, 245U);
  const auto down = colors(WallpaperColors::topToBottom);
  EXPECT_LT(at(down.image, 50, 0) & 0xFFU, 10U);
  EXPECT_GT(at(down.image, 50, 49) & 0xFFU, 245U);
  EXPECT_NEAR(down.color & 0xFFU, 0x80, 6);
}

TEST_F(WallpaperPainterTest, WhatCannotBeReadIsComplainedOf) {
  const auto whole = halves(1000, 500);
  std::ifstream stream(whole, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  const auto pipe = (folder_ / "pipe").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const auto bitmap = [](std::string sides) {
    return std::string("BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0", 18) + sides +
           std::string("\1\0\x20\0\0\0\0\0\x10\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 28) + std::string(16, '\x7f');
  };
  EXPECT_EQ(paint({file("small.bmp", bitmap(std::string("\2\0\0\0\2\0\0\0", 8))), WallpaperFit::zoomed}).complaint, "");
  const auto huge = bitmap(std::string("\xA0\x86\1\0\xA0\x86\1\0", 8));   // a hundred thousand a side
  const auto large = bitmap(std::string("\x30\x75\0\0\x30\x75\0\0", 8));  // thirty thousand: gigabytes
  for (const auto& path :
       {file("empty.png", ""), file("text.png", "hello"), file("cut.png", bytes.substr(0, 60)), file("huge.bmp", huge),
        file("large.bmp", large), pipe, (folder_ / "missing.png").string(), folder_.path().string()}) {
    const auto painted = paint({path, WallpaperFit::zoomed, WallpaperColors::solid, green});
    EXPECT_NE(painted.complaint, "") << path;
    EXPECT_EQ(at(painted.image, 50, 25), green) << path;
  }
}

TEST_F(WallpaperPainterTest, APhotographIsTurnedAsTheCameraSays) {
  QImage upright(400, 800, QImage::Format_RGB32);
  upright.fill(red);
  const auto path = (folder_ / "turned.jpg").string();
  QImageWriter writer(QString::fromStdString(path), "jpg");
  writer.setTransformation(QImageIOHandler::TransformationRotate90);
  ASSERT_TRUE(writer.write(upright)) << "stored upright, to be seen lying";
  const auto painted = paint({path, WallpaperFit::scaled, WallpaperColors::solid, green});
  EXPECT_NE(at(painted.image, 1, 25), green) << "it fills the tile";
  EXPECT_EQ(painted.complaint, "");
}

TEST(CoverWith, FillsTheTileAndWhatIsUnknown) {
  Image picture{40, 20, std::vector<std::uint32_t>(800, red)};
  EXPECT_EQ(*coverWith(picture, {10, 10}).image, (Image{10, 10, std::vector<std::uint32_t>(100, red)}));
  EXPECT_EQ(coverWith(picture, {77, 31}).color, red);
  for (std::size_t i = 0; i < 600; ++i) picture.pixels[i] = 0;
  const auto filled = coverWith(picture, {40, 20});
  EXPECT_EQ(filled.color, red) << "the rest taken for the same";
  EXPECT_EQ(at(filled.image, 5, 0), red);
}

TEST(LearnFrom, PutsTheDesktopTogetherFromWhatIsSeenBesideTheWindows) {
  const Image first{10, 10, std::vector<std::uint32_t>(100, red)};
  const auto half = learnFrom(first, std::vector<Rect>{{-5, -5, 10, 20}}, nullptr);
  ASSERT_TRUE(half.picture);
  EXPECT_EQ(at(half.picture, 4, 5), 0U) << "covered";
  EXPECT_EQ(at(half.picture, 5, 5), red);
  EXPECT_EQ(half.color, red);

  const Image second{10, 10, std::vector<std::uint32_t>(100, blue)};
  const auto both = learnFrom(second, std::vector<Rect>{{5, 0, 5, 10}}, half.picture);
  EXPECT_EQ(at(both.picture, 4, 5), blue);
  EXPECT_EQ(at(both.picture, 5, 5), red);
  EXPECT_EQ(learnFrom(second, std::vector<Rect>{{5, 0, 5, 10}}, both.picture).picture, both.picture) << "nothing new";
  EXPECT_FALSE(learnFrom(first, std::vector<Rect>{{0, 0, 10, 10}}, nullptr).picture) << "nothing seen";
  const Image larger{20, 20, std::vector<std::uint32_t>(400, blue)};
  EXPECT_EQ(at(learnFrom(larger, {}, both.picture).picture, 19, 19), blue) << "another screen";
}

}  // namespace
}  // namespace tessaspaces
