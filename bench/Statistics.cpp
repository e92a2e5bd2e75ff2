#include "Statistics.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace tessaspaces::bench {

double quantile(std::vector<double> samples, double part) {
  if (samples.empty()) return 0;
  std::sort(samples.begin(), samples.end());
  const double place = part * static_cast<double>(samples.size() - 1);
  const auto below = static_cast<std::size_t>(std::floor(place));
  const auto above = static_cast<std::size_t>(std::ceil(place));
  return samples[below] + (samples[above] - samples[below]) * (place - std::floor(place));
}

std::string_view textAfter(std::string_view option, int argc, char** argv) {
  for (int i = 1; i + 1 < argc; ++i) {
    if (argv[i] == option) return argv[i + 1];
  }
  return {};
}

int numberAfter(std::string_view option, int argc, char** argv, int otherwise) {
  const std::string text(textAfter(option, argc, argv));
  return text.empty() ? otherwise : std::atoi(text.c_str());
}

}  // namespace tessaspaces::bench
