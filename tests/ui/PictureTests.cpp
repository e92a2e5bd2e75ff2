#include <gtest/gtest.h>

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/PaintKit.h"
#include "ui/Painted.h"
#include "ui/PictureCache.h"
#include "ui/PictureScaling.h"
#include "ui/ShadowPatch.h"
#include "ui/TilePainter.h"

namespace tessaspaces {
namespace {

QImage noise(int width, int height) {
  std::mt19937 random(3);
  QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto value = static_cast<QRgb>(random());
      image.setPixel(x, y, qPremultiply(x % 7 == 0 ? value : value | 0xFF000000U));
    }
  }
  return image;
}

/// The mean of all that lies under a pixel of the result, the long way.
double mean(const QImage& image, QSize size, int x, int y, int shift) {
  const double stepX = static_cast<double>(image.width()) / size.width();
  const double stepY = static_cast<double>(image.height()) / size.height();
  double sum = 0;
  for (int j = 0; j < image.height(); ++j) {
    const double down = std::min<double>(j + 1, (y + 1) * stepY) - std::max<double>(j, y * stepY);
    for (int i = 0; down > 0 && i < image.width(); ++i) {
      const double across = std::min<double>(i + 1, (x + 1) * stepX) - std::max<double>(i, x * stepX);
      const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(j));
      if (across > 0) sum += across * down * (row[i] >> shift & 0xFFU);
    }
  }
  return sum / (stepX * stepY);
}

TEST(PictureScalingTest, EachPixelIsTheMeanOfWhatItStandsFor) {
  const QImage image = noise(61, 47);
  for (const QSize size : {QSize(61, 20), QSize(30, 23), QSize(7, 46), QSize(1, 1), QSize(60, 47), QSize(3, 1)}) {
    const QImage scaled = scaledPicture(image, size);
    ASSERT_EQ(scaled.size(), size);
    for (int y = 0; y < size.height(); ++y) {
      const auto* row = reinterpret_cast<const QRgb*>(scaled.constScanLine(y));
      for (int x = 0; x < size.width(); ++x) {
        for (const int shift : {0, 8, 16, 24}) {
          ASSERT_NEAR(row[x] >> shift & 0xFFU, mean(image, size, x, y, shift), 2.5) << x << ", " << y;
        }
      }
    }
  }
  // What is opaque stays so, in every size: it is drawn by copying.
  const QImage white = wrapped(plain(0xFFFFFFFF, 97, 53));
  for (int width = 1; width <= 200; width += 13) {
    EXPECT_EQ(scaledPicture(white, QSize(width, 31)).pixel(width - 1, 30), 0xFFFFFFFFU) << width;
  }
}

TEST(PictureCacheTest, MakesOnceWhatIsKeptAndForgetsTheRest) {
  const auto first = picture(1);
  const auto second = picture(2);
  EXPECT_EQ(wrapped(first).constBits(), reinterpret_cast<const uchar*>(first->pixels.data()));
  const auto request = [](const ImageRef& image, int side) {
    return PictureRequest{image, QSize(side, side), QRect(0, 0, image->width, image->height), 3, 1, 0xFF102030};
  };
  PictureCache cache;
  const auto* kept = &cache.picture(request(first, 20));
  const auto pixels = kept->image().cacheKey();
  cache.picture(request(first, 21));
  cache.picture(request(second, 20));
  EXPECT_EQ(cache.size(), 3U);
  EXPECT_EQ(first.use_count(), 3);

  cache.keepOnly({request(first, 20), request(first, 20), request(second, 99)});
  EXPECT_EQ(cache.size(), 1U);
  EXPECT_EQ(first.use_count(), 2);
  EXPECT_EQ(second.use_count(), 1);
  EXPECT_EQ(cache.picture(request(first, 20)).image().cacheKey(), pixels);
  // Rounded corners are part of it.
  EXPECT_EQ(qAlpha(kept->image().pixel(0, 0)), 0x00 + qAlpha(kept->image().pixel(19, 19)));
  EXPECT_LT(qAlpha(kept->image().pixel(0, 0)), 128);
  EXPECT_EQ(qAlpha(kept->image().pixel(10, 0)), 255);
}

TEST(PictureCacheTest, ManyAtOnceAreTheSameAsOneByOne) {
  std::vector<PictureRequest> requests;
  for (int i = 0; i < 200; ++i) {
    const auto image = picture(i, 50 + i, 40);
    requests.push_back({image, QSize(20 + i % 60, 25), QRect(0, 0, image->width, image->height), 4, 1, 0xFF102030});
    if (i % 3 == 0) requests.push_back(requests.back());
  }
  PictureCache atOnce;
  PictureCache alone;
  atOnce.makeAll(requests);
  EXPECT_EQ(atOnce.size(), 200U);
  for (const auto& request : requests) {
    ASSERT_EQ(difference(atOnce.picture(request).image(), alone.picture(request).image()), "");
  }
}

TEST(ShadowPatchTest, IsSeamlessAndLeavesTheMiddleFree) {
  const ShadowPatch patch({10, 18, 6, QColor(0, 0, 0, 200)});
  for (const QSize size : {QSize(700, 300), QSize(120, 90), QSize(57, 40)}) {
    QImage image(size + QSize(100, 100), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QRect around(QPoint(50, 50), size);
    QPainter painter(&image);
    patch.draw(painter, around);
    painter.end();
    EXPECT_EQ(qAlpha(image.pixel(around.center())), 0);
    EXPECT_GT(qAlpha(image.pixel(around.center().x(), around.bottom() + 1)), 60);
    const auto jump = [&](QPoint at, QPoint step) {
      return std::abs(qAlpha(image.pixel(at)) - qAlpha(image.pixel(at + step)));
    };
    // Along all four sides, a pixel off the edge, nothing changes suddenly.
    for (int x = 30; x < image.width() - 30; ++x) {
      EXPECT_LE(jump({x, around.top() - 1}, {1, 0}), 14) << size.width() << ": " << x;
      EXPECT_LE(jump({x, around.bottom() + 1}, {1, 0}), 14) << size.width() << ": " << x;
    }
    for (int y = 30; y < image.height() - 30; ++y) {
      EXPECT_LE(jump({around.left() - 1, y}, {0, 1}), 14) << size.width() << ": " << y;
      EXPECT_LE(jump({around.right() + 1, y}, {0, 1}), 14) << size.width() << ": " << y;
    }
  }
}

const char* const names[] = {"",
                             "Mail",
                             "A name that goes on and on and would never fit under a tile",
                             "مكتب العمل اليومي للمشروع الكبير جدا",
                             "家と仕事のあいだの長い名前のデスクトップ",
                             "🚀🚀🚀 launch 👩‍🚀👩‍🚀👩‍🚀👩‍🚀",
                             "Line\nbreak\tand  spaces",
                             "ÁÇĞŷ̈́͂jjgQ"};

TEST(TextLineTest, IsNeverWiderThanItsRoom) {
  for (const char* name : names) {
    for (int room = -3; room < 320; room += 9) {
      const TextLine line(QString::fromUtf8(name), Theme::font(14), room);
      EXPECT_LE(line.width, std::max(0, room)) << name;
      EXPECT_FALSE(line.text.contains(QLatin1Char('\n')));
      QImage image(420, 60, QImage::Format_ARGB32_Premultiplied);
      image.fill(Qt::white);
      QPainter painter(&image);
      line.draw(painter, QRect(50, 10, line.width, 40), Qt::black);
      painter.end();
      // Letters may lean out by a pixel or two, no more.
      for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 420; ++x) {
          const bool inside = x >= 48 && x < 50 + line.width + 2 && y >= 10 && y < 50;
          ASSERT_TRUE(inside || image.pixel(x, y) == 0xFFFFFFFFU) << name << " at " << room << ": " << x << ", " << y;
        }
      }
    }
  }
}

TEST(BadgeTest, StaysOnItsTileAndShowsTheWholeNameWhereItCan) {
  for (const double scale : {1.0, 1.5, 2.0}) {
    PaintKit kit(sampleTheme(), scale);
    const TilePainter painter(kit);
    for (const double width : {12.0, 40.0, 90.0, 187.7, 500.0}) {
      for (const char* name : names) {
        GridScene::Tile tile = sampleScene().tiles[1];
        tile.rect.width = width;
        tile.content = tile.rect.inset(2, 2);
        tile.label = name;
        const QRect badge = painter.badgeRect(tile);
        if (badge.isEmpty()) continue;
        const QRect content = painter.contentRect(tile);
        EXPECT_GE(badge.left(), content.left()) << name << " on " << width;
        EXPECT_LE(badge.right(), content.right()) << name << " on " << width;
        EXPECT_TRUE(painter.bounds(tile).contains(badge));
      }
    }
    GridScene::Tile tile = sampleScene().tiles[0];
    tile.label = "Mail";
    const int usual = painter.badgeRect(tile).width();
    EXPECT_GT(usual, 0);
    tile.label = "Mails";
    EXPECT_GT(painter.badgeRect(tile).width(), usual);
    // A number that the name has already is not said twice.
    tile.number = 3;
    tile.label = "Desktop 3";
    const int once = painter.badgeRect(tile).width();
    tile.label = "Desktop 4";
    EXPECT_GT(painter.badgeRect(tile).width(), once);
  }
}

}  // namespace
}  // namespace tessaspaces
