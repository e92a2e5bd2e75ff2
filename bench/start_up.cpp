// How long the program takes from its start to registered hot keys, in turn with how long an empty Qt program takes
// to its tray icon, on one server.
#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>

#include "Statistics.h"
#include "harness/Session.h"

namespace {

using namespace tessaspaces;
using namespace tessaspaces::harness;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double startProgram(Session& session) {
  const std::size_t from = session.program.logEnd();
  const auto start = Clock::now();
  const Process process = session.program.startAnother();
  if (!waitForText(session.program.logFile(), "HOTKEY: registered", from, patience, &process)) {
    throw Failure("the program registered no hot keys:\n" + process.output());
  }
  return millisecondsSince(start);
}

double startEmptyTray(Session& session) {
  const auto start = Clock::now();
  const Process process = session.server.start({TESSASPACES_EMPTY_TRAY});
  if (!waitForText(process.outputFile(), "ready", 0, patience, &process)) {
    throw Failure("the empty program did not come up:\n" + process.output());
  }
  return millisecondsSince(start);
}

void print(std::string_view name, const std::vector<double>& samples, double base) {
  fmt::print("  {:<36}{:>10.1f}{:>10.1f}{:>9.2f}x\n", name, bench::median(samples), bench::quantile(samples, 0.95),
             bench::median(samples) / base);
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = std::max(1, bench::numberAfter("--rounds", argc, argv, 30));
  try {
    Session session;
    // The log is what tells that the keys are there.
    session.program.control({"config", "set", "tessaspaces.logLevel", "3"});
    std::vector<double> program;
    std::vector<double> empty;
    startProgram(session);
    startEmptyTray(session);
    for (int round = 0; round < rounds; ++round) {
      program.push_back(startProgram(session));
      empty.push_back(startEmptyTray(session));
    }
    const double base = bench::median(empty);
    fmt::print("Start-up under openbox, {} rounds\n  {:<36}{:>10}{:>10}{:>10}\n", rounds, "program", "median ms",
               "p95 ms", "ratio");
    print("this program, to its hot keys", program, base);
    print("an empty Qt program, to its icon", empty, base);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "start_up: %s\n", failure.what());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
