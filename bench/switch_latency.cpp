// How long a switch takes from the key to the changed root property, four ways in turn on one server:
// the window manager's own binding, this program, sxhkd running wmctrl, and the bare client message.
#include <algorithm>

#include "Latency.h"

namespace {

using namespace tessaspaces;
using namespace tessaspaces::bench;
using namespace tessaspaces::harness;

class Bench {
 public:
  explicit Bench(Manager manager) : session_(sessionOptions(manager)), watch_(session_.server, "_NET_CURRENT_DESKTOP") {
    openWindows(session_);
    session_.program.start();
    // What a user has: no writing of every step into the log. Taken in long before the warm-up is over.
    session_.program.control({"config", "set", "tessaspaces.logLevel", "0"});
    sxhkd_ = startSxhkd(session_, "wmctrl -s {}", [this] {
      session_.keyboard.press({KeyCombo::digitKeyCodes[1], sxhkdModifiers});
      return session_.probe.waitForDesktop(1);
    });
  }

  /// True when each press switched.
  bool run(int rounds) {
    int desktop = 0;
    session_.probe.switchTo(desktop);
    session_.probe.waitForDesktop(desktop);
    for (int round = -warmUp; round < rounds; ++round) {
      for (Way& way : ways_) {
        desktop = (desktop + 1) % desktops;
        sample(way, desktop, round);
      }
    }
    return std::all_of(ways_.begin(), ways_.end(), [](const Way& way) { return way.failures == 0; });
  }

  [[nodiscard]] const std::array<Way, 4>& ways() const { return ways_; }

 private:
  void sample(Way& way, int desktop, int round) {
    const KeyCombo key{KeyCombo::digitKeyCodes.at(static_cast<std::size_t>(desktop)), way.modifiers};
    auto time = timeToChange(session_, watch_, key, [&] { session_.probe.switchTo(desktop); });
    if (!session_.probe.waitForDesktop(desktop, Milliseconds(3'000))) time.reset();
    way.take(time, round);
    settle(session_, desktop);
  }

  Session session_;
  Watch watch_;
  Process sxhkd_;
  std::array<Way, 4> ways_ = fourWays(KeyCombo::command, controlOption);
};

}  // namespace

int main(int argc, char** argv) {
  return forEachManager("switch_latency", argc, argv, 200, [](Manager manager, int rounds) {
    Bench bench(manager);
    const bool right = bench.run(rounds);
    printHeading(nameOf(manager), rounds);
    printWays(bench.ways());
    return right;
  });
}
