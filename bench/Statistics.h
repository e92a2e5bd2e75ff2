#pragma once

#include <string_view>
#include <vector>

namespace tessaspaces::bench {

/// The value below which `part` (0 to 1) of the samples lie; 0 for none at all.
[[nodiscard]] double quantile(std::vector<double> samples, double part);
[[nodiscard]] inline double median(const std::vector<double>& samples) {
  return quantile(samples, 0.5);
}

/// The whole number after an option such as "--rounds", or `otherwise`.
[[nodiscard]] int numberAfter(std::string_view option, int argc, char** argv, int otherwise);
/// The text after an option, or nothing.
[[nodiscard]] std::string_view textAfter(std::string_view option, int argc, char** argv);

}  // namespace tessaspaces::bench
