#include "demo/Witness.h"

#include <fmt/format.h>

#include <cstdio>

namespace tessaspaces::demo {
namespace {

/// As people count: from 1.
std::string desktopText(std::optional<int> desktop) {
  return desktop ? fmt::format("desktop {}", *desktop + 1) : std::string("no desktop at all");
}

}  // namespace

Witness::Witness(harness::Session& session, std::filesystem::path pictures)
    : session_(&session), pictures_(std::move(pictures)) {}

void Witness::heading(std::string_view text) const {
  fmt::print("\n{}\n", text);
  std::fflush(stdout);
}

void Witness::note(std::string_view text) const {
  fmt::print("    {}\n", text);
  std::fflush(stdout);
}

void Witness::verdict(std::string_view what, std::string_view expected, std::string_view found, bool right,
                      std::string_view witness) {
  ++steps_;
  if (!right) ++failures_;
  fmt::print("  {} {}: expected {}; {} says: {}\n", right ? "✓" : "✗", what, expected, witness, found);
  std::fflush(stdout);
}

void Witness::pressAndExpectDesktop(KeyCombo combo, int expected) {
  const auto before = session_->probe.currentDesktop();
  session_->keyboard.press(combo);
  const bool right = session_->probe.waitForDesktop(expected, harness::Milliseconds(5'000));
  verdict(fmt::format("pressed {} on {}", combo.display(), desktopText(before)), desktopText(expected),
          desktopText(session_->probe.currentDesktop()), right);
}

void Witness::pressAndExpectRefusal(KeyCombo combo, std::string_view line) {
  const auto before = session_->probe.currentDesktop();
  const std::size_t from = session_->program.logEnd();
  session_->keyboard.press(combo);
  const bool logged = session_->program.waitForLog(line, from, harness::Milliseconds(5'000));
  const auto after = session_->probe.currentDesktop();
  verdict(fmt::format("pressed {} on {}", combo.display(), desktopText(before)), "nothing to move", desktopText(after),
          before == after);
  verdict("and", fmt::format("\"{}\"", line), logged ? "the line is there" : "no such line", logged, "the log");
}

void Witness::configure(const std::vector<harness::Setting>& settings) const {
  for (const auto& [key, value] : settings) note(fmt::format("$ tessactl config set {} {}", key, value));
  session_->program.configure(settings);
}

void Witness::begin(int desktop) const {
  if (session_->probe.currentDesktop() == desktop) return;
  session_->keyboard.press(harness::directKey(desktop + 1));
  if (!session_->probe.waitForDesktop(desktop)) throw harness::Failure("the program does not switch");
}

void Witness::picture(std::string_view name) {
  if (pictures_.empty()) return;
  const auto file = pictures_ / fmt::format("{:02}-{}.png", ++pictureNumber_, name);
  if (session_->server.screenshot(file)) {
    note(fmt::format("picture: {}", file.string()));
  } else {
    verdict("a picture of the screen", file.string(), "it could not be made", false, "ImageMagick");
  }
}

}  // namespace tessaspaces::demo
