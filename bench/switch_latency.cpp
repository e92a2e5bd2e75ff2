// How long a switch takes from the key to the changed root property, four ways in turn on one server:
// the window manager's own binding, this program, sxhkd running wmctrl, and the bare client message.
#include <fmt/format.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>

#include "Statistics.h"
#include "harness/Session.h"

namespace {

using namespace tessaspaces;
using namespace tessaspaces::harness;

constexpr int desktops = 4;
constexpr int windows = 20;
constexpr int warmUp = 8;
constexpr auto settleTime = std::chrono::milliseconds(25);

/// Sees the current desktop change and says when the notice arrived. Asks the server nothing in between: a question
/// under way would stand in the way of what is measured.
class Watch {
 public:
  explicit Watch(const XServer& server) : x_(server.display()) {
    property_ = x_.atom("_NET_CURRENT_DESKTOP");
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(x_.get(), x_.root(), XCB_CW_EVENT_MASK, &mask);
    x_.roundTrip();
  }
  void forget() const {
    x_.roundTrip();
    while (Owned<xcb_generic_event_t>(xcb_poll_for_event(x_.get()))) {
    }
  }
  [[nodiscard]] std::optional<Clock::time_point> change() const {
    const Deadline deadline(Milliseconds(3'000));
    while (const auto event = x_.nextEvent(deadline)) {
      if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
      if (reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->atom == property_) return Clock::now();
    }
    return std::nullopt;
  }

 private:
  XConnection x_;
  xcb_atom_t property_ = XCB_ATOM_NONE;
};

struct Way {
  std::string name;
  std::uint32_t modifiers = 0;  // 0: the bare message
  std::vector<double> samples;  // in milliseconds
  int failures = 0;
};

/// sxhkd with one binding per desktop, known to work when this returns.
Process startSxhkd(const Session& session, std::uint32_t modifiers) {
  std::string text;
  for (int n = 1; n <= desktops; ++n) text += fmt::format("control + shift + {}\n    wmctrl -s {}\n", n, n - 1);
  const auto file = session.server.home() / "sxhkdrc";
  writeFile(file, text);
  // sxhkd runs commands through SHELL; a plain sh is the quickest and so the fairest.
  Process process = session.server.start({"sxhkd", "-c", file}, {{"SHELL", "/bin/sh"}});
  // It does not say when it has its keys, and to try to take one would keep it from getting it.
  const Deadline deadline(patience);
  do {
    if (deadline.passed() || !process.running()) throw Failure("sxhkd does not switch:\n" + process.output());
    session.keyboard.press({KeyCombo::digitKeyCodes[1], modifiers});
  } while (!session.probe.waitForDesktop(1, Milliseconds(200)));
  return process;
}

class Bench {
 public:
  Bench(Manager manager, int rounds)
      : rounds_(rounds),
        session_({.manager = manager, .desktops = {.desktops = desktops, .bindings = OwnBindings::direct}}),
        watch_(session_.server) {
    for (int i = 0; i < windows; ++i) {
      session_.client.open({.title = fmt::format("window {}", i), .desktop = i % desktops});
    }
    session_.program.start();
    // What a user has: no writing of every step into the log. Taken in long before the warm-up is over.
    session_.program.control({"config", "set", "tessaspaces.logLevel", "0"});
    sxhkd_ = startSxhkd(session_, KeyCombo::control | KeyCombo::shift);
  }

  /// True when each press switched.
  bool run() {
    int desktop = 0;
    session_.probe.switchTo(desktop);
    session_.probe.waitForDesktop(desktop);
    for (int round = -warmUp; round < rounds_; ++round) {
      for (Way& way : ways_) {
        desktop = (desktop + 1) % desktops;
        sample(way, desktop, round >= 0);
      }
    }
    bool right = true;
    for (const Way& way : ways_) right = right && way.failures == 0;
    return right;
  }

  void print(std::string_view name) const {
    const double bare = bench::median(ways_[3].samples);
    const double sxhkd = bench::median(ways_[2].samples);
    fmt::print("\n{}: {} desktops, {} windows, {} rounds\n", name, desktops, windows, rounds_);
    fmt::print("  {:<32}{:>10}{:>10}{:>12}{:>12}{:>10}\n", "way", "median ms", "p95 ms", "to message", "to sxhkd",
               "missed");
    for (const Way& way : ways_) {
      const double middle = bench::median(way.samples);
      fmt::print("  {:<32}{:>10.3f}{:>10.3f}{:>11.2f}x{:>11.2f}x{:>10}\n", way.name, middle,
                 bench::quantile(way.samples, 0.95), middle / bare, middle / sxhkd, way.failures);
    }
  }

 private:
  void sample(Way& way, int desktop, bool counts) {
    const Keymap map = session_.keyboard.keymap();
    const xcb_keycode_t key = map.keyFor(KeyCombo{KeyCombo::digitKeyCodes.at(static_cast<std::size_t>(desktop)), 0});
    if (way.modifiers != 0) session_.keyboard.hold(way.modifiers);
    // A person presses a key while nothing goes on: let the window manager finish the switch before.
    std::this_thread::sleep_for(settleTime);
    watch_.forget();
    const auto start = Clock::now();
    if (way.modifiers != 0) {
      session_.keyboard.tap(key);
    } else {
      session_.probe.switchTo(desktop);
    }
    const auto end = watch_.change();
    if (way.modifiers != 0) session_.keyboard.release(way.modifiers);
    if (!end || !session_.probe.waitForDesktop(desktop, Milliseconds(3'000))) {
      ++way.failures;
    } else if (counts) {
      way.samples.push_back(std::chrono::duration<double, std::milli>(*end - start).count());
    }
    settle(desktop);
  }

  /// Lets everybody finish with this switch before the next one starts: the window manager answers a request that
  /// comes after it, and the desktop is the one that was asked for.
  void settle(int desktop) {
    const xcb_window_t window = session_.client.open({.title = "settle", .frame = {0, 0, 40, 40}, .desktop = desktop});
    session_.client.close(window);
    session_.probe.waitFor([&] { return !session_.probe.manages(window); });
  }

  int rounds_;
  Session session_;
  Watch watch_;
  Process sxhkd_;
  std::array<Way, 4> ways_{{{"the window manager's own key", KeyCombo::command, {}, 0},
                            {"this program", controlOption, {}, 0},
                            {"sxhkd running wmctrl", KeyCombo::control | KeyCombo::shift, {}, 0},
                            {"bare client message", 0, {}, 0}}};
};

}  // namespace

int main(int argc, char** argv) {
  const int rounds = std::max(1, bench::numberAfter("--rounds", argc, argv, 200));
  const std::string_view only = bench::textAfter("--wm", argc, argv);
  bool right = true;
  try {
    for (const Manager manager : {Manager::openbox, Manager::xfwm4, Manager::i3}) {
      if (!only.empty() && nameOf(manager) != only) continue;
      Bench bench(manager, rounds);
      right = bench.run() && right;
      bench.print(nameOf(manager));
      std::fflush(stdout);
    }
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "switch_latency: %s\n", failure.what());
    return EXIT_FAILURE;
  }
  if (!right) std::fputs("Some switches did not happen.\n", stderr);
  return right ? EXIT_SUCCESS : EXIT_FAILURE;
}
