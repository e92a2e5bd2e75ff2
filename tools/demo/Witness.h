#pragma once

#include <string>
#include <string_view>

#include "harness/Session.h"

namespace tessaspaces::demo {

/// Carries out steps, says for each what was done, what should come of it and what the X server holds afterwards,
/// and remembers whether all was as it should be.
class Witness {
 public:
  Witness(harness::Session& session, std::filesystem::path pictures);

  /// From now on this session is the one that is looked at.
  void turnTo(harness::Session& session) { session_ = &session; }

  void heading(std::string_view text) const;
  void note(std::string_view text) const;
  /// One line with its verdict, and who was asked for what is found.
  void verdict(std::string_view what, std::string_view expected, std::string_view found, bool right,
               std::string_view witness = "the X server");
  /// Presses the combo; desktop `expected` (from 0) must become the current one.
  void pressAndExpectDesktop(KeyCombo combo, int expected);
  /// Presses the combo; the log must then hold `line`, and the desktop must be the same as before.
  void pressAndExpectRefusal(KeyCombo combo, std::string_view line);
  /// `tessactl config set` for each, and the program has taken them when this returns.
  void configure(const std::vector<harness::Setting>& settings) const;
  /// Goes to the desktop where a step begins, by its direct key.
  void begin(int desktop) const;
  /// Writes a picture of the screen, if pictures are wanted and can be made.
  void picture(std::string_view name);

  [[nodiscard]] int failures() const { return failures_; }
  [[nodiscard]] int steps() const { return steps_; }

 private:
  harness::Session* session_;
  std::filesystem::path pictures_;
  int steps_ = 0;
  int failures_ = 0;
  int pictureNumber_ = 0;
};

}  // namespace tessaspaces::demo
