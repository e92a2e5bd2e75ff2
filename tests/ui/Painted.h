#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <random>
#include <string>

#include "support/CoreTest.h"
#include "ui/ScenePainter.h"

namespace tessaspaces {

/// A picture of one colour with a mark in its middle, so that no two numbers look alike and none is symmetrical.
ImageRef picture(int number, int width = 60, int height = 40);
/// A picture of one colour.
ImageRef plain(QRgb color, int width = 20, int height = 12);

/// Two rows of three desktops with windows on a panel of 640 x 400.
GridScene sampleScene();

Theme sampleTheme(bool dark = true);

/// The scene as a painter draws it that has drawn nothing before.
QImage drawn(const GridScene& scene, double scale = 1, const Theme& theme = sampleTheme());

/// Empty when they are the same, else where they differ first, and how.
std::string difference(const QImage& actual, const QImage& expected);

/// Texts come from the simulated platform's language.
class PaintingTest : public CoreTest {
 protected:
  void SetUp() override { start("one 640x400 | A*"); }
};

}  // namespace tessaspaces
