#include "grid/WindowSets.h"

#include <algorithm>
#include <cmath>

namespace tessaspaces::test {

double Dice::between(double low, double high) {
  state_ ^= state_ << 13;
  state_ ^= state_ >> 7;
  state_ ^= state_ << 17;
  return low + (high - low) * static_cast<double>(state_ >> 11) / 9007199254740992.0;
}

const std::vector<WindowSet>& windowSets() {
  const auto repeat = [](auto one) {
    return [one](int count, Dice& dice) {
      std::vector<Rect> windows;
      for (int i = 0; i < count; ++i) windows.push_back(one(i, count, dice));
      return windows;
    };
  };
  const auto anywhere = [](double width, double height, Dice& dice) {
    return Rect{dice.between(0, 1 - width), dice.between(0, 1 - height), width, height};
  };
  static const std::vector<WindowSet> sets = {
      {"scattered",
       repeat([=](int, int, Dice& dice) { return anywhere(dice.between(0.1, 0.6), dice.between(0.1, 0.6), dice); })},
      {"wild", repeat([=](int, int, Dice& dice) {
         return anywhere(0.01 * std::pow(100, dice.between(0, 1)), 0.01 * std::pow(100, dice.between(0, 1)), dice);
       })},
      {"maximised", repeat([](int, int, Dice&) {
         return Rect{0, 0, 1, 1};
       })},
      {"cascade", repeat([](int i, int count, Dice&) {
         return Rect{0.4 * i / count, 0.4 * i / count, 0.55, 0.6};
       })},
      {"one large", repeat([=](int i, int, Dice& dice) {
         return i == 0 ? Rect{0, 0, 1, 1} : anywhere(dice.between(0.1, 0.4), dice.between(0.1, 0.4), dice);
       })},
      {"strips", repeat([=](int i, int, Dice& dice) {
         return i % 2 == 0 ? anywhere(0.9, 0.02, dice) : anywhere(0.02, 0.9, dice);
       })},
      {"specks", repeat([=](int, int, Dice& dice) { return anywhere(0.001, 0.001, dice); })},
  };
  return sets;
}

std::vector<Rect> previews(const Rect& content, const std::vector<Rect>& parts) {
  std::vector<Rect> rects;
  for (const auto& part : parts) {
    const Rect rect{content.x + part.x * content.width, content.y + part.y * content.height,
                    std::max(6.0, part.width * content.width), std::max(6.0, part.height * content.height)};
    rects.push_back(rect.intersection(content));
  }
  return rects;
}

double usualLimit(const Rect& content, const std::vector<Rect>& natural) {
  double total = 0;
  for (const auto& rect : natural) total += rect.width * rect.height;
  const double budget = 0.85 * content.width * content.height;
  return total > budget ? std::sqrt(budget / total) : 1;
}

}  // namespace tessaspaces::test
