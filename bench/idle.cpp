// How often the program wakes up when nothing happens: the voluntary context switches of each of its threads over
// some seconds. Only the hot-corner timer should show, 8.3 times a second on the main thread.
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>
#include <thread>

#include "Statistics.h"
#include "harness/Session.h"

namespace {

using namespace tessaspaces;
using namespace tessaspaces::harness;

struct Thread {
  std::string name;
  long sleeps = 0;
};

std::map<int, Thread> threadsOf(pid_t pid) {
  std::map<int, Thread> threads;
  for (const auto& entry : std::filesystem::directory_iterator(fmt::format("/proc/{}/task", pid))) {
    Thread thread;
    std::istringstream status(readFile(entry.path() / "status"));
    for (std::string word; status >> word;) {
      if (word == "Name:") status >> thread.name;
      if (word == "voluntary_ctxt_switches:") status >> thread.sleeps;
    }
    threads[std::stoi(entry.path().filename())] = thread;
  }
  return threads;
}

}  // namespace

int main(int argc, char** argv) {
  const int seconds = std::max(1, bench::numberAfter("--seconds", argc, argv, 10));
  try {
    Session session;
    session.program.start();
    // A measurement of time is the one thing that has to let time pass; the first second is still start-up.
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const auto before = threadsOf(session.program.pid());
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    const auto after = threadsOf(session.program.pid());
    fmt::print("Wake-ups per second over {} s of nothing to do\n", seconds);
    double total = 0;
    for (const auto& [id, thread] : after) {
      const auto earlier = before.find(id);
      const long sleeps = thread.sleeps - (earlier != before.end() ? earlier->second.sleeps : 0);
      const double perSecond = static_cast<double>(sleeps) / seconds;
      total += perSecond;
      fmt::print("  {:<20}{:>8.2f}{}\n", thread.name, perSecond, id == session.program.pid() ? "  main thread" : "");
    }
    fmt::print("  {:<20}{:>8.2f}  (the hot-corner timer alone: {:.2f})\n", "all", total, 1 / 0.12);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "idle: %s\n", failure.what());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
