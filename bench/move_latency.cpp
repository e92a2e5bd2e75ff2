// How long it takes from the key until the focused window is on the next desktop, four ways in turn on one server:
// the window manager's own binding, this program, sxhkd running wmctrl, and the bare client message. Then, how long a
// move keeps this program from the next command: a switch asked for right behind it, and one alone.
#include <fmt/format.h>

#include <algorithm>
#include <thread>

#include "Latency.h"
#include "Statistics.h"

namespace {

using namespace tessaspaces;
using namespace tessaspaces::bench;
using namespace tessaspaces::harness;

/// For moves and for switches straight to a desktop alike, so that one can follow the other with nothing let go.
constexpr std::uint32_t programModifiers = controlOption | KeyCombo::shift;

/// The program looks after a moved window for 180 ms, and takes no more than two of them at a time.
constexpr auto lookingAfter = std::chrono::milliseconds(230);

constexpr int from = 0;
constexpr int to = 1;
constexpr int aside = 2;  // where the switches behind a move go
constexpr std::uint32_t digitKey(int desktop) {
  return KeyCombo::digitKeyCodes.at(static_cast<std::size_t>(desktop));
}

class Bench {
 public:
  explicit Bench(Manager manager) : session_(sessionOptions(manager)) {
    openWindows(session_);
    window_ = session_.client.open({.title = "the one that travels", .desktop = from});
    const std::string modifiers = std::to_string(programModifiers);
    session_.program.start({{"tessaspaces.hotkey.1", modifiers}, {"tessaspaces.hotkey.2", modifiers}});
    // What a user has: no writing of every step into the log. Taken in long before the warm-up is over.
    session_.program.control({"config", "set", "tessaspaces.logLevel", "0"});
    sxhkd_ = startSxhkd(session_, "wmctrl -r :ACTIVE: -t {}", [this] {
      prepare();
      session_.keyboard.press({digitKey(to), sxhkdModifiers});
      return arrives(patience);
    });
  }

  /// True when each press did what it is for.
  bool run(int rounds) {
    const Watch moved(session_.server, window_, "_NET_WM_DESKTOP");
    const Watch switched(session_.server, "_NET_CURRENT_DESKTOP");
    for (int round = -warmUp; round < rounds; ++round) {
      for (Way& way : ways_) sampleMove(way, moved, round);
      sampleSwitch(alone_, switched, round, {});
      sampleSwitch(behindMessage_, switched, round, [this] {
        session_.probe.moveTo(window_, to);
        session_.probe.connection().flush();
      });
      const xcb_keycode_t right = session_.keyboard.keymap().keyFor(KeyCombo{rightKey.keyCode, 0});
      sampleSwitch(behindMove_, switched, round, [this, right] { session_.keyboard.tap(right); });
    }
    const auto none = [](const Way& way) { return way.failures == 0; };
    return std::all_of(ways_.begin(), ways_.end(), none) && none(alone_) && none(behindMessage_) && none(behindMove_);
  }

  void print() const {
    printWays(ways_);
    const double alone = median(alone_.samples);
    fmt::print("  {:<32}{:>10}{:>10}{:>12}{:>12}{:>10}\n", "this program's switch", "median ms", "p95 ms", "later by",
               "", "missed");
    for (const Way* way : {&alone_, &behindMessage_, &behindMove_}) {
      const double middle = median(way->samples);
      fmt::print("  {:<32}{:>10.3f}{:>10.3f}{:>12.3f}{:>12}{:>10}\n", way->name, middle, quantile(way->samples, 0.95),
                 middle - alone, "", way->failures);
    }
  }

 private:
  /// The window on the desktop that is shown, with the focus, and nothing under way.
  void prepare() {
    const Probe& probe = session_.probe;
    if (probe.currentDesktop() != from) probe.switchTo(from);
    if (probe.desktopOf(window_) != from) probe.moveTo(window_, from);
    const bool back = probe.waitFor([&] { return probe.currentDesktop() == from && probe.desktopOf(window_) == from; });
    settle(session_, from);
    probe.activate(window_);
    const bool focused = probe.waitFor([&] { return probe.activeWindow() == window_; });
    if (!back || !focused) throw Failure("the window does not come back");
  }

  [[nodiscard]] bool arrives(Milliseconds timeout = Milliseconds(3'000)) const {
    return session_.probe.waitFor([&] { return session_.probe.desktopOf(window_) == to; }, timeout);
  }

  void sampleMove(Way& way, const Watch& watch, int round) {
    prepare();
    const KeyCombo key{way.modifiers == programModifiers ? rightKey.keyCode : digitKey(to), way.modifiers};
    auto time = timeToChange(session_, watch, key, [this] { session_.probe.moveTo(window_, to); });
    if (!arrives()) time.reset();
    way.take(time, round);
    if (way.modifiers == programModifiers) std::this_thread::sleep_for(lookingAfter);
  }

  void sampleSwitch(Way& way, const Watch& watch, int round, const std::function<void()>& lead) {
    prepare();
    auto time = timeToChange(session_, watch, {digitKey(aside), programModifiers}, {}, lead);
    if (!session_.probe.waitForDesktop(aside, Milliseconds(3'000)) || (lead && !arrives())) time.reset();
    way.take(time, round);
    if (lead) std::this_thread::sleep_for(lookingAfter);
  }

  Session session_;
  xcb_window_t window_ = XCB_NONE;
  Process sxhkd_;
  std::array<Way, 4> ways_ = fourWays(KeyCombo::command | KeyCombo::shift, programModifiers);
  Way alone_{"alone", programModifiers, {}, 0};
  Way behindMessage_{"right behind a bare move message", programModifiers, {}, 0};
  Way behindMove_{"right behind this program's move", programModifiers, {}, 0};
};

}  // namespace

int main(int argc, char** argv) {
  return forEachManager("move_latency", argc, argv, 100, [](Manager manager, int rounds) {
    Bench bench(manager);
    const bool right = bench.run(rounds);
    printHeading(nameOf(manager), rounds);
    bench.print();
    return right;
  });
}
