#include "Latency.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "Statistics.h"

namespace tessaspaces::bench {

using namespace harness;

namespace {

constexpr auto settleTime = std::chrono::milliseconds(25);

}  // namespace

Watch::Watch(const XServer& server, xcb_window_t window, std::string_view property) : x_(server.display()) {
  property_ = x_.atom(property);
  const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_change_window_attributes(x_.get(), window != XCB_NONE ? window : x_.root(), XCB_CW_EVENT_MASK, &mask);
  x_.roundTrip();
}

Watch::Watch(const XServer& server, std::string_view property) : Watch(server, XCB_NONE, property) {}

void Watch::forget() const {
  x_.roundTrip();
  while (Owned<xcb_generic_event_t>(xcb_poll_for_event(x_.get()))) {
  }
}

std::optional<Clock::time_point> Watch::change() const {
  const Deadline deadline(Milliseconds(3'000));
  while (const auto event = x_.nextEvent(deadline)) {
    if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY) continue;
    if (reinterpret_cast<const xcb_property_notify_event_t*>(event.get())->atom == property_) return Clock::now();
  }
  return std::nullopt;
}

void Way::take(std::optional<double> sample, int round) {
  if (!sample) {
    ++failures;
  } else if (round >= 0) {
    samples.push_back(*sample);
  }
}

std::array<Way, 4> fourWays(std::uint32_t ownModifiers, std::uint32_t programModifiers) {
  return {{{"the window manager's own key", ownModifiers, {}, 0},
           {"this program", programModifiers, {}, 0},
           {"sxhkd running wmctrl", sxhkdModifiers, {}, 0},
           {"bare client message", 0, {}, 0}}};
}

SessionOptions sessionOptions(Manager manager) {
  return {.manager = manager, .desktops = {.desktops = desktops, .bindings = OwnBindings::direct}};
}

void openWindows(Session& session) {
  for (int i = 0; i < windows; ++i) {
    session.client.open({.title = fmt::format("window {}", i), .desktop = i % desktops});
  }
}

Process startSxhkd(const Session& session, std::string_view command, const std::function<bool()>& works) {
  std::string text;
  for (int n = 1; n <= desktops; ++n) {
    text += fmt::format("control + shift + {}\n    {}\n", n, fmt::format(fmt::runtime(command), n - 1));
  }
  const auto file = session.server.home() / "sxhkdrc";
  writeFile(file, text);
  // sxhkd runs commands through SHELL; a plain sh is the quickest and so the fairest.
  Process process = session.server.start({"sxhkd", "-c", file}, {{"SHELL", "/bin/sh"}});
  // It does not say when it has its keys. One that is pressed while it takes them can escape its notice, and then it
  // holds the whole keyboard for ever.
  KeyHolder keys(session.server);
  const Deadline deadline(patience);
  while (!keys.isTaken({KeyCombo::digitKeyCodes.at(desktops - 1), sxhkdModifiers})) {
    if (deadline.passed() || !process.running()) throw Failure("sxhkd took no keys:\n" + process.output());
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  std::this_thread::sleep_for(settleTime);
  if (!works()) throw Failure("sxhkd does nothing:\n" + process.output());
  return process;
}

std::optional<double> timeToChange(const Session& session, const Watch& watch, KeyCombo key,
                                   const std::function<void()>& message, const std::function<void()>& lead) {
  const xcb_keycode_t code = session.keyboard.keymap().keyFor(KeyCombo{key.keyCode, 0});
  if (key.modifiers != 0) session.keyboard.hold(key.modifiers);
  // A person presses a key while nothing goes on: let the window manager finish what was before.
  std::this_thread::sleep_for(settleTime);
  watch.forget();
  if (lead) lead();
  const auto start = Clock::now();
  if (key.modifiers != 0) {
    session.keyboard.tap(code);
  } else {
    message();
  }
  const auto end = watch.change();
  if (key.modifiers != 0) session.keyboard.release(key.modifiers);
  if (!end) return std::nullopt;
  return std::chrono::duration<double, std::milli>(*end - start).count();
}

void settle(Session& session, int desktop) {
  const xcb_window_t window = session.client.open({.title = "settle", .frame = {0, 0, 40, 40}, .desktop = desktop});
  session.client.close(window);
  session.probe.waitFor([&] { return !session.probe.manages(window); });
}

void printHeading(std::string_view manager, int rounds) {
  fmt::print("\n{}: {} desktops, {} windows, {} rounds\n", manager, desktops, windows, rounds);
}

void printWays(const std::array<Way, 4>& ways) {
  const double bare = median(ways[bareMessage].samples);
  const double sxhkd = median(ways[sxhkdRunningWmctrl].samples);
  fmt::print("  {:<32}{:>10}{:>10}{:>12}{:>12}{:>10}\n", "way", "median ms", "p95 ms", "to message", "to sxhkd",
             "missed");
  for (const Way& way : ways) {
    const double middle = median(way.samples);
    fmt::print("  {:<32}{:>10.3f}{:>10.3f}{:>11.2f}x{:>11.2f}x{:>10}\n", way.name, middle, quantile(way.samples, 0.95),
               middle / bare, middle / sxhkd, way.failures);
  }
}

int forEachManager(std::string_view program, int argc, char** argv, int defaultRounds,
                   const std::function<bool(Manager, int rounds)>& run) {
  const int rounds = std::max(1, numberAfter("--rounds", argc, argv, defaultRounds));
  const std::string_view only = textAfter("--wm", argc, argv);
  bool right = true;
  try {
    for (const Manager manager : {Manager::openbox, Manager::xfwm4, Manager::i3}) {
      if (!only.empty() && nameOf(manager) != only) continue;
      right = run(manager, rounds) && right;
      std::fflush(stdout);
    }
  } catch (const std::exception& failure) {
    fmt::print(stderr, "{}: {}\n", program, failure.what());
    return EXIT_FAILURE;
  }
  if (!right) fmt::print(stderr, "{}: some commands were not carried out.\n", program);
  return right ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace tessaspaces::bench
