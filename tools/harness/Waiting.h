#pragma once

#include <chrono>
#include <stdexcept>

namespace tessaspaces::harness {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

/// How long anything that must happen may take. Generous: a loaded machine needs it, and only a run that
/// fails anyway spends it.
inline constexpr Milliseconds patience{15'000};

/// What the harness throws when the surroundings of a test cannot be made (no server, no window manager).
/// Thrown only from here into test code, where it fails the test; the product itself throws nothing.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Deadline {
 public:
  explicit Deadline(Milliseconds fromNow) : end_(Clock::now() + fromNow) {}
  [[nodiscard]] bool passed() const { return Clock::now() >= end_; }
  /// What is left, rounded up, for poll(); 0 once passed.
  [[nodiscard]] int pollTimeout() const {
    const auto left = std::chrono::ceil<Milliseconds>(end_ - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
  }
  [[nodiscard]] Milliseconds left() const { return Milliseconds(pollTimeout()); }

 private:
  Clock::time_point end_;
};

}  // namespace tessaspaces::harness
