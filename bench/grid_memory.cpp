// What the overview costs in memory: the program with 100 previews, what the X server keeps for it, and both after many
// openings.   grid_memory [--openings N]
#include <fmt/format.h>
#include <unistd.h>
#include <xcb/res.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <thread>

#include "GridStage.h"
#include "Statistics.h"

namespace {

using namespace tessaspaces;
using namespace tessaspaces::bench;
using namespace tessaspaces::harness;

double mebibytes(double bytes) {
  return bytes / (1024 * 1024);
}

/// A line of /proc/PID/status that counts in kB; in bytes.
double statusBytes(pid_t pid, std::string_view name) {
  std::istringstream status(readFile(fmt::format("/proc/{}/status", pid)));
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, name.size(), name) == 0) return std::stod(line.substr(name.size() + 1)) * 1024;
  }
  throw Failure("no such process");
}

/// Processor time of a process so far, in seconds.
double processorTime(pid_t pid) {
  std::string text = readFile(fmt::format("/proc/{}/stat", pid));
  std::istringstream fields(text.substr(text.rfind(')') + 2));
  std::string skipped;
  for (int field = 3; field < 14; ++field) fields >> skipped;
  double user = 0;
  double system = 0;
  fields >> user >> system;
  return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

/// The pixmaps that the server keeps for a process, over all its connections.
double pixmapBytes(const XConnection& x, pid_t pid) {
  const xcb_res_client_id_spec_t all{0, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
  const auto ids = x.reply(xcb_res_query_client_ids_reply, xcb_res_query_client_ids(x.get(), 1, &all));
  if (!ids) throw Failure("the server has no X-Resource extension");
  double bytes = 0;
  for (auto it = xcb_res_query_client_ids_ids_iterator(ids.get()); it.rem > 0; xcb_res_client_id_value_next(&it)) {
    const auto* value = xcb_res_client_id_value_value(it.data);
    if (xcb_res_client_id_value_value_length(it.data) < 1 || value[0] != static_cast<std::uint32_t>(pid)) continue;
    const auto cookie = xcb_res_query_client_pixmap_bytes(x.get(), it.data->spec.client);
    if (const auto found = x.reply(xcb_res_query_client_pixmap_bytes_reply, cookie)) {
      bytes += static_cast<double>(found->bytes) + 4294967296.0 * found->bytes_overflow;
    }
  }
  return bytes;
}

struct Account {
  double program = 0;
  double server = 0;
  double pixmaps = 0;
};

class Bench {
 public:
  Bench() : stage_({.desktops = 16, .windows = 100}, false) {}

  void openAndClose(int times) {
    for (int i = 0; i < times; ++i) {
      stage_.overview.open();
      stage_.overview.close();
    }
  }

  Account account() {
    // Freed memory and closed pictures need their moment; a measurement is what has to let time pass.
    std::this_thread::sleep_for(std::chrono::seconds(2));
    return {statusBytes(stage_.session.program.pid(), "VmRSS:"), statusBytes(stage_.session.server.pid(), "VmRSS:"),
            pixmapBytes(stage_.session.probe.connection(), stage_.session.program.pid())};
  }

  /// Parts of one processor that program and server take while nothing happens.
  std::pair<double, double> idle() {
    constexpr int seconds = 5;
    const pid_t program = stage_.session.program.pid();
    const pid_t server = stage_.session.server.pid();
    const double programBefore = processorTime(program);
    const double serverBefore = processorTime(server);
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    return {(processorTime(program) - programBefore) / seconds, (processorTime(server) - serverBefore) / seconds};
  }

  GridStage& stage() { return stage_; }

 private:
  GridStage stage_;
};

void print(std::string_view what, const Account& account) {
  fmt::print("  {:<34}{:>10.1f}{:>10.1f}{:>10.1f}{:>10.1f}\n", what, mebibytes(account.program),
             mebibytes(account.pixmaps), mebibytes(account.program + account.pixmaps), mebibytes(account.server));
}

}  // namespace

int main(int argc, char** argv) {
  const int openings = std::max(20, numberAfter("--openings", argc, argv, 500));
  try {
    Bench bench;
    fmt::print("16 desktops, 100 windows at 1920x1080 (MiB)\n");
    fmt::print("  {:<34}{:>10}{:>10}{:>10}{:>10}\n", "", "program", "pixmaps", "sum", "X server");
    print("all windows seen once", bench.account());
    bench.stage().overview.open();
    const Account open = bench.account();
    print("open for the first time", open);
    bench.stage().overview.close();
    bench.openAndClose(9);
    const Account few = bench.account();
    print("closed after 10 openings", few);
    const auto idleBefore = bench.idle();
    bench.openAndClose(openings - 10);
    const Account many = bench.account();
    print(fmt::format("closed after {} openings", openings), many);
    const auto idleAfter = bench.idle();
    fmt::print("\n  with 100 previews: {:.1f} MB resident, {:.1f} MB with the pixmaps; wanted < 120\n",
               open.program / 1e6, (open.program + open.pixmaps) / 1e6);
    fmt::print("  growth from 10 to {} openings: program {:+.1f}, pixmaps {:+.1f}, X server {:+.1f}\n", openings,
               mebibytes(many.program - few.program), mebibytes(many.pixmaps - few.pixmaps),
               mebibytes(many.server - few.server));
    fmt::print("  processor while closed: program {:.1f} % then {:.1f} %, X server {:.1f} % then {:.1f} %\n",
               100 * idleBefore.first, 100 * idleAfter.first, 100 * idleBefore.second, 100 * idleAfter.second);
  } catch (const std::exception& failure) {
    fmt::print(stderr, "grid_memory: {}\n", failure.what());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
