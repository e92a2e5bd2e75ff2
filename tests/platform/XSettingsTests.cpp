#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <vector>

#include "platform/x11/XSettings.h"

namespace tessaspaces {
namespace {

using testing::Optional;

/// A text, a number, a colour and another number, as a settings program writes them.
std::vector<std::uint8_t> sample(const std::string& byteOrder) {
  std::ifstream file(std::string(TESSASPACES_SOURCE_DIR) + "/tests/fuzz/seeds/xsettings/" + byteOrder,
                     std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(XSettings, AreReadInEitherByteOrder) {
  for (const auto* order : {"little", "big"}) {
    const auto settings = XSettings::parse(sample(order));
    EXPECT_THAT(settings.number("Gtk/EnableAnimations"), Optional(0)) << order;
    EXPECT_THAT(settings.number("Xft/DPI"), Optional(98304)) << order;
    EXPECT_EQ(settings.number("Net/ThemeName"), std::nullopt) << "a text";
    EXPECT_EQ(settings.number("Gtk/Selection"), std::nullopt) << "a colour";
    EXPECT_EQ(settings.number(""), std::nullopt);
  }
}

TEST(XSettings, WhatStandsBeforeACutIsUnderstood) {
  const auto whole = sample("little");
  bool seen = false;
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const auto found = XSettings::parse(std::span(whole).first(size)).number("Gtk/EnableAnimations");
    EXPECT_FALSE(seen && !found) << "gone again after " << size << " bytes";
    seen = found.has_value();
  }
  EXPECT_TRUE(seen);
  EXPECT_THAT(XSettings::parse(sample("many")).number("Xft/DPI"), Optional(98304)) << "it promised more than there is";
  EXPECT_EQ(XSettings::parse(sample("longname")).number("Xft/DPI"), std::nullopt);
}

}  // namespace
}  // namespace tessaspaces
