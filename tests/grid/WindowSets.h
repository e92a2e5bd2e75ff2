#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/Geometry.h"

namespace tessaspaces::test {

/// Fractions of a screen; the same sequence everywhere.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed * 2654435769U + 1) {}
  double between(double low, double high);

 private:
  std::uint64_t state_;
};

/// A kind of desktop: windows as parts of the screen (0 to 1 on both axes).
struct WindowSet {
  std::string name;
  std::function<std::vector<Rect>(int count, Dice& dice)> make;
};
const std::vector<WindowSet>& windowSets();

/// As the previews of a tile: scaled, at least 6 points in both directions, and clipped.
std::vector<Rect> previews(const Rect& content, const std::vector<Rect>& parts);
/// The scale at which the windows would cover 85% of the content, at most 1.
double usualLimit(const Rect& content, const std::vector<Rect>& natural);

}  // namespace tessaspaces::test
