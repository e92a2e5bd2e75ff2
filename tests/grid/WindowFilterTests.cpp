#include <gtest/gtest.h>

#include "grid/WindowFilter.h"

namespace tessaspaces {
namespace {

WindowFilter filterFor(std::string_view text) {
  WindowFilter filter;
  filter.set(text);
  return filter;
}

TEST(WindowFilterTest, RanksHowWellAWindowAnswers) {
  const std::string_view decomposed = "Cafe\xCC\x81 menu";
  const struct {
    std::string_view typed, title, application;
    std::optional<int> rank;
  } cases[] = {
      {"not", "Notes", "Editor", 0},
      {"ed", "Notes", "Editor", 1},
      {"li", "Shopping list", "Editor", 2},
      {"ed", "Notes", "Text Editor", 3},
      {"hop", "Shopping list", "Editor", 4},
      {"dit", "Notes", "Editor", 5},
      {"no", "Casino notes", "", 2},          // the better of two places
      {"ed", "Edges of red", "Editor", 0},    // the title before the name
      {"ed", "Fred", "Editor", 1},            // and the start before the middle
      {"list shop", "Shopping list", "", 2},  // words in any order, the worst counts
      {"shop  li", "Shopping list", "", 2},
      {"shopping list", "Shopping list", "", 0},  // unless they stand in a row
      {"notes edi", "Notes", "Editor", 1},
      {"list x", "Shopping list", "", std::nullopt},
      {"", "Notes", "Editor", std::nullopt},
      {"  ", "Notes", "Editor", std::nullopt},
      {"x", "", "", std::nullopt},
      {"(old", "notes (old)", "", 2},
      {"2", "v2 of 2", "", 2},  // a digit belongs to its word
      {"cafe", "Café", "", 0},
      {"CAFÉ", decomposed, "", 0},
      {"kůň", "Kun", "", 0},
      {"strasse", "Straße", "", 0},
      {"ω", "ΑΩ", "", 4},
      {"abc", "ＡＢＣ", "", 0},
      {"カ", "ｶﾞ", "", 0},
      {"b c", "a\tb\tc", "", 2},
      {"é", "\xC3", "", std::nullopt},  // half a character is none
      {"z", "\xFF\xFEz\x80", "", 2},
      {"\xE2\x82", "a\xE2\x82", "", 4},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(filterFor(c.typed).rank(c.title, c.application), c.rank) << c.typed << " in " << c.title;
  }
  EXPECT_EQ(filterFor("z").rank(std::string_view("\0z", 2), ""), 0) << "control characters are not there";
}

TEST(WindowFilterTest, CharactersAreTakenBackWhole) {
  const struct {
    std::string_view typed, left;
  } cases[] = {
      {"ab", "a"},    {"a", ""},      {"aé", "a"},      {"ae\xCC\x81", "a"}, {"x👩‍👩‍👧", "x"},
      {"🇨🇿🇩🇪", "🇨🇿"}, {"한국", "한"}, {"a \xFF", "a "}, {"a b", "a "},
  };
  for (const auto& c : cases) {
    auto filter = filterFor(c.typed);
    EXPECT_TRUE(filter.removeLast());
    EXPECT_EQ(filter.text(), c.left) << c.typed;
  }
  EXPECT_FALSE(WindowFilter().removeLast());
}

TEST(WindowFilterTest, KeepsWhatWasTypedWithinReason) {
  WindowFilter filter;
  EXPECT_FALSE(filter.append("  \xE3\x80\x80"));
  EXPECT_TRUE(filter.isEmpty());
  EXPECT_TRUE(filter.append(" Ab"));
  EXPECT_TRUE(filter.append(" "));
  EXPECT_TRUE(filter.append("c"));
  EXPECT_EQ(filter.text(), "Ab c");
  EXPECT_FALSE(filter.set("Ab c"));
  EXPECT_TRUE(filter.append("\xC3"));
  EXPECT_EQ(filter.text(), "Ab c\uFFFD");

  std::string endless;
  for (int i = 0; i < 1000; ++i) endless += "€";
  filter.set(endless);
  EXPECT_EQ(filter.text(), endless.substr(0, WindowFilter::mostBytes / 3 * 3));
  EXPECT_FALSE(filter.append("€"));
}

}  // namespace
}  // namespace tessaspaces
