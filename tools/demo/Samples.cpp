#include "demo/Samples.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace tessaspaces::demo {
namespace {

constexpr std::array<std::uint32_t, 6> accents{0x4C8BF5, 0xE0734A, 0x3FA66B, 0xA06BD6, 0xD6A93B, 0x35A3B5};

std::uint32_t accent(int number) {
  return accents.at(static_cast<std::size_t>(number) % accents.size());
}

/// Dark, with coloured words indented as code is.
Picture editor(int number, int width, int height) {
  Picture picture(width, height, 0x1E2430);
  picture.fill({0, 0, width / 5, height}, 0x171C26);
  for (int i = 0; i * 22 < height - 30; ++i) {
    picture.words(14, 16 + i * 22, width / 5 - 30, 6, 0x4A5468, static_cast<unsigned>(number * 7 + i));
  }
  constexpr std::array<std::uint32_t, 5> colours{0x7FB2F0, 0xC9D1DE, 0xE6A86A, 0x8CCB8A, 0xC397E0};
  for (int i = 0; i * 19 < height - 34; ++i) {
    const int indent = (i * 5 + number) % 4 * 22;
    const int length = (width * 4 / 5 - indent - 60) * (40 + (i * 37 + number * 11) % 60) / 100;
    picture.words(width / 5 + 24 + indent, 18 + i * 19, length, 6,
                  colours.at(static_cast<std::size_t>(i + number) % colours.size()), static_cast<unsigned>(i + number));
  }
  return picture;
}

/// White, with a headline and paragraphs.
Picture document(int number, int width, int height) {
  Picture picture(width, height, 0xE9ECF1);
  const int margin = width / 8;
  picture.fill({margin, 24, width - 2 * margin, height}, 0xFFFFFF);
  picture.words(margin + 30, 56, (width - 2 * margin) / 2, 14, 0x27303F, static_cast<unsigned>(number));
  for (int i = 0; i * 18 < height - 120; ++i) {
    if (i % 7 == 6) continue;
    const int length = i % 7 == 5 ? (width - 2 * margin) / 2 : width - 2 * margin - 60;
    picture.words(margin + 30, 96 + i * 18, length, 5, 0x9AA3B2, static_cast<unsigned>(number * 31 + i));
  }
  return picture;
}

/// A page with a coloured head and cards.
Picture browser(int number, int width, int height) {
  Picture picture(width, height, 0xFAFBFD);
  picture.fill({0, 0, width, 40}, 0xE3E7EE);
  picture.card({width / 6, 8, width * 2 / 3, 24}, 12, 0xFFFFFF);
  for (int i = 0; i < 3; ++i) picture.disc(18 + i * 20, 20, 6, 0xC3CAD6);
  picture.shade({0, 40, width, height / 3}, accent(number), mix(accent(number), 0x10141C, 0.45));
  picture.words(width / 12, 40 + height / 8, width / 3, 16, 0xFFFFFF, static_cast<unsigned>(number + 3));
  const int card = (width - 80) / 3;
  for (int i = 0; i < 3; ++i) {
    const int left = 20 + i * (card + 20);
    const int top = 60 + height / 3;
    picture.card({left, top, card, height - top - 24}, 10, 0xECEFF5);
    picture.card({left + 10, top + 10, card - 20, (height - top - 24) / 2}, 8, mix(accent(number + i), 0xFFFFFF, 0.35));
    picture.words(left + 14, top + 24 + (height - top - 24) / 2, card - 40, 6, 0x8A94A6, static_cast<unsigned>(i));
  }
  return picture;
}

/// Columns of figures and a curve.
Picture chart(int number, int width, int height) {
  Picture picture(width, height, 0xFFFFFF);
  picture.fill({0, 0, width, 34}, 0xF0F2F6);
  picture.words(16, 13, width / 3, 8, 0x5B6678, static_cast<unsigned>(number));
  for (int i = 1; i < 5; ++i) picture.fill({30, 34 + (height - 60) * i / 5, width - 50, 1}, 0xE4E8EE);
  const int bars = 12;
  const int step = (width - 60) / bars;
  for (int i = 0; i < bars; ++i) {
    const double value = 0.25 + 0.6 * std::fabs(std::sin(0.55 * i + number));
    const int tall = static_cast<int>((height - 80) * value);
    picture.card({36 + i * step, height - 26 - tall, step * 2 / 3, tall}, 3,
                 i % 4 == number % 4 ? accent(number + 1) : accent(number));
  }
  return picture;
}

/// A landscape of its own.
Picture photograph(int number, int width, int height) {
  constexpr std::array<std::array<std::uint32_t, 3>, 4> moods{{{0xF7C59F, 0xEF798A, 0x3B3355},
                                                               {0xBDE0FE, 0xA2D2FF, 0x33658A},
                                                               {0xFFE5B4, 0xF4A259, 0x5B3A29},
                                                               {0xC7E8CA, 0x7FB685, 0x2D4739}}};
  const auto& mood = moods.at(static_cast<std::size_t>(number) % moods.size());
  Picture picture(width, height, mood[0]);
  picture.shade({0, 0, width, height * 3 / 4}, mood[1], mood[0]);
  picture.disc(width * 0.7, height * 0.35, height * 0.09, 0xFFF6E5);
  for (int i = 0; i < 4; ++i) {
    picture.hills(height * (0.42 - 0.09 * i), height * 0.05, width / 6.0, number + i * 1.7,
                  mix(mood[1], mood[2], 0.3 + 0.22 * i));
  }
  return picture;
}

/// Bubbles left and right.
Picture chat(int number, int width, int height) {
  Picture picture(width, height, 0xF3F5F9);
  picture.fill({0, 0, width, 38}, 0xFFFFFF);
  picture.disc(24, 19, 11, accent(number));
  picture.words(46, 15, width / 4, 8, 0x465063, static_cast<unsigned>(number));
  for (int i = 0; 56 + i * 48 < height - 30; ++i) {
    const int length = width * (30 + (i * 23 + number * 13) % 30) / 100;
    const bool mine = i % 3 == 1;
    const int left = mine ? width - length - 18 : 18;
    picture.card({left, 54 + i * 48, length, 36}, 14, mine ? accent(number) : 0xFFFFFF);
    picture.words(left + 14, 69 + i * 48, length - 30, 6, mine ? 0xFFFFFF : 0x8A94A6,
                  static_cast<unsigned>(i + number));
  }
  return picture;
}

/// Discs in a row, a cover and a bar.
Picture player(int number, int width, int height) {
  Picture picture(width, height, 0x14161C);
  picture.shade({0, 0, width, height}, mix(accent(number + 2), 0x14161C, 0.55), 0x14161C);
  const int side = std::min(width, height) / 2;
  picture.card({(width - side) / 2, height / 8, side, side}, 12, accent(number + 2));
  picture.disc(width / 2.0, height / 8.0 + side / 2.0, side * 0.3, mix(accent(number + 2), 0xFFFFFF, 0.35));
  picture.disc(width / 2.0, height / 8.0 + side / 2.0, side * 0.08, 0x14161C);
  picture.card({width / 6, height * 3 / 4, width * 2 / 3, 5}, 2, 0x3A404C);
  picture.card({width / 6, height * 3 / 4, width / 4, 5}, 2, 0xFFFFFF);
  for (int i = -1; i <= 1; ++i) picture.disc(width / 2.0 + i * 44, height * 0.86, i == 0 ? 15 : 9, 0xE8ECF2);
  return picture;
}

/// A month with entries.
Picture calendar(int number, int width, int height) {
  Picture picture(width, height, 0xFFFFFF);
  picture.fill({0, 0, width, 40}, accent(number));
  picture.words(18, 15, width / 4, 10, 0xFFFFFF, static_cast<unsigned>(number));
  const int columns = 7;
  const int rows = 5;
  for (int i = 0; i < columns * rows; ++i) {
    const int x = i % columns * width / columns;
    const int y = 40 + i / columns * (height - 40) / rows;
    picture.fill({x, y, width / columns, 1}, 0xE4E8EE);
    picture.fill({x, y, 1, (height - 40) / rows}, 0xE4E8EE);
    if ((i * 7 + number) % 5 == 0) {
      picture.card({x + 6, y + 18, width / columns - 14, 12}, 4, mix(accent(number + i), 0xFFFFFF, 0.25));
    }
  }
  return picture;
}

}  // namespace

Sample sample(int number, int width, int height) {
  constexpr std::array<const char*, 6> files{"Parser.cpp", "notes.md", "Session.h", "main.rs", "layout.css", "README"};
  constexpr std::array<const char*, 6> papers{"Quarterly report",   "Letter to Ålesund", "Travel plan",
                                              "Minutes of Tuesday", "Thesis, chapter 3", "Recipe book"};
  constexpr std::array<const char*, 6> pages{"Weather for the week", "Train timetable", "Museum of Clocks",
                                             "Garden forum",         "Open street map", "Radio programme"};
  const auto pick = [number](const auto& names) {
    return names.at(static_cast<std::size_t>(number / 8) % names.size());
  };
  switch (number % 8) {
    case 0: return {fmt::format("{} – Editor", pick(files)), "Editor", editor(number, width, height)};
    case 1: return {fmt::format("{} – Browser", pick(pages)), "Browser", browser(number, width, height)};
    case 2: return {fmt::format("{} – Writer", pick(papers)), "Writer", document(number, width, height)};
    case 3: return {fmt::format("Harbour {} – Photos", number + 1), "Photos", photograph(number, width, height)};
    case 4: return {fmt::format("Sales {} – Sheets", 2020 + number / 8), "Sheets", chart(number, width, height)};
    case 5: return {fmt::format("Talk with Team {} – Chat", number / 8 + 1), "Chat", chat(number, width, height)};
    case 6: return {fmt::format("Track {} – Music", number + 1), "Music", player(number, width, height)};
    default: return {fmt::format("Month {} – Calendar", number / 8 + 1), "Calendar", calendar(number, width, height)};
  }
}

Picture landscape(int width, int height) {
  Picture picture(width, height, 0x1B2440);
  picture.shade({0, 0, width, height * 4 / 5}, 0x22305C, 0xE8A87C);
  picture.disc(width * 0.68, height * 0.52, height * 0.075, 0xFFE3C2);
  for (int i = 0; i < 5; ++i) {
    picture.hills(height * (0.46 - 0.085 * i), height * 0.045, width / 9.0, 1.3 * i,
                  mix(0x9C6B82, 0x141A30, 0.22 * (i + 0.6)));
  }
  return picture;
}

}  // namespace tessaspaces::demo
