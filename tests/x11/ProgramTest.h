#pragma once

#include <gmock/gmock.h>
#include <unistd.h>

#include <memory>

#include "harness/Session.h"

namespace tessaspaces::harness {

inline void PrintTo(Manager manager, std::ostream* out) {
  *out << nameOf(manager);
}

/// The program in a session of its own under one of the window managers. It must end cleanly however the test goes;
/// what it logged is printed when the test fails.
class ProgramTest : public testing::TestWithParam<Manager> {
 protected:
  static bool perMonitor() { return GetParam() == Manager::i3; }

  void open(int desktops, std::string monitors = {}, std::vector<std::string> monitorOfDesktop = {}) {
    session_ = std::make_unique<Session>(SessionOptions{
        .manager = GetParam(),
        .desktops = {.desktops = desktops,
                     .monitors = perMonitor() ? std::move(monitorOfDesktop) : std::vector<std::string>{}},
        .screen = {.width = 1280, .height = 800, .monitors = std::move(monitors)}});
  }
  void start(int desktops, const std::vector<Setting>& settings = {}) {
    open(desktops);
    session_->program.start(settings);
  }
  void TearDown() override {
    if (!session_) return;
    if (session_->program.pid() != 0) {
      EXPECT_EQ(session_->program.stop(), 0) << "the program ends cleanly on SIGTERM";
    }
    if (HasFailure()) {
      std::cout << "Log of the program:\n" << session_->program.log() << "Its output:\n" << session_->program.output();
    }
  }

  Session& session() { return *session_; }
  Probe& probe() { return session_->probe; }
  Program& program() { return session_->program; }

  /// Presses a key; the desktop (from 0) that is current in the end.
  testing::AssertionResult goes(KeyCombo combo, int desktop) {
    const auto before = probe().currentDesktop().value_or(-1);
    session_->keyboard.press(combo);
    if (probe().waitForDesktop(desktop)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << combo.display() << " on " << before << " leads to "
                                       << probe().currentDesktop().value_or(-1) << ", not to " << desktop;
  }
  /// Presses a key; what the log says to it, and the desktop stays.
  testing::AssertionResult refuses(KeyCombo combo, std::string_view line) {
    const auto before = probe().currentDesktop();
    const std::size_t from = program().logEnd();
    session_->keyboard.press(combo);
    if (!program().waitForLog(line, from)) return testing::AssertionFailure() << "not logged: " << line;
    if (probe().currentDesktop() != before) return testing::AssertionFailure() << "the desktop changed";
    return testing::AssertionSuccess();
  }
  /// Presses a key whose grab may come a moment later, until it has led to the desktop.
  testing::AssertionResult comesToWork(KeyCombo combo, int desktop) {
    const Deadline deadline(patience);
    do {
      session_->keyboard.press(combo);
      if (probe().waitForDesktop(desktop, Milliseconds(200))) return testing::AssertionSuccess();
    } while (!deadline.passed());
    return testing::AssertionFailure() << combo.display() << " never leads to " << desktop;
  }

 private:
  std::unique_ptr<Session> session_;
};

inline std::string managerName(const testing::TestParamInfo<Manager>& info) {
  return std::string(nameOf(info.param));
}

}  // namespace tessaspaces::harness
