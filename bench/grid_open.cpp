// How long the overview takes from its hot key to its complete first frame on the screen, beside rofi's list of windows
// on the same server, looked at by the same probe; then whether its zoom and a drag keep up with sixty frames a second.
//   grid_open [--rounds N] [--screen 1920x1080|3840x2160|frames]
#include <fmt/format.h>
#include <xcb/damage.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "GridStage.h"
#include "ScreenProbe.h"
#include "Statistics.h"

namespace {

using namespace tessaspaces;
using namespace tessaspaces::bench;
using namespace tessaspaces::harness;

constexpr KeyCombo rofiKey{5, KeyCombo::control | KeyCombo::shift};
constexpr double frameTime = 1000.0 / 60;

double milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

/// rofi on a key of its own, as a user has it.
class Rofi {
 public:
  explicit Rofi(Session& session) {
    const auto file = session.server.home() / "sxhkdrc";
    writeFile(file, "control + shift + g\n    rofi -show window\n");
    sxhkd_ = session.server.start({"sxhkd", "-c", file}, {{"SHELL", "/bin/sh"}});
    KeyHolder keys(session.server);
    const Deadline deadline(patience);
    while (!keys.isTaken(rofiKey)) {
      if (deadline.passed() || !sxhkd_.running()) throw Failure("sxhkd took no keys:\n" + sxhkd_.output());
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    // It looks at its own grabs after taking them; a key pressed in between would be lost.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }

 private:
  Process sxhkd_;
};

/// From the key to the last pixel that it changes.
class Bench {
 public:
  explicit Bench(GridStage::Size size) : stage_(size, false), probe_(stage_.session.server), rofi_(stage_.session) {
    stage_.session.program.control({"config", "set", "tessaspaces.logLevel", "0"});
    if (!probe_.waitForRest()) throw Failure("the screen does not come to rest");
  }

  double openOverview() {
    const double time = timeFrom(Overview::key);
    stage_.overview.close();
    if (!probe_.waitForRest()) throw Failure("the screen does not come to rest");
    return time;
  }

  double openRofi() {
    const double time = timeFrom(rofiKey);
    stage_.session.keyboard.strike(keys::escape);
    if (!probe_.waitForRest()) throw Failure("the screen does not come to rest");
    return time;
  }

 private:
  double timeFrom(KeyCombo key) {
    const auto& keyboard = stage_.session.keyboard;
    const xcb_keycode_t code = keyboard.keymap().keyFor(KeyCombo{key.keyCode, 0});
    keyboard.hold(key.modifiers);
    Clock::time_point start;
    const auto change = probe_.changeAfter([&] {
      start = Clock::now();
      keyboard.tap(code);
    });
    keyboard.release(key.modifiers);
    if (!change) throw Failure("nothing opened");
    return milliseconds(change->last - start);
  }

  GridStage stage_;
  ScreenProbe probe_;
  Rofi rofi_;
};

void measureOpening(GridStage::Size size, int rounds, double wanted) {
  Bench bench(size);
  // rofi has been started before, somewhere, by the time a user judges it.
  bench.openRofi();
  const double first = bench.openOverview();
  std::vector<double> overview;
  std::vector<double> rofi;
  for (int round = 0; round < rounds; ++round) {
    rofi.push_back(bench.openRofi());
    overview.push_back(bench.openOverview());
  }
  const double base = median(rofi);
  fmt::print("{}x{}, {} desktops, {} windows, {} rounds (milliseconds)\n", size.width, size.height, size.desktops,
             size.windows, rounds);
  fmt::print("  {:<28}{:>9}{:>9}{:>10}\n", "", "median", "p95", "to rofi");
  fmt::print("  {:<28}{:>9.1f}{:>9.1f}\n", "rofi -show window, warm", base, quantile(rofi, 0.95));
  fmt::print("  {:<28}{:>9.1f}{:>9.1f}{:>9.2f}x  wanted {:.1f}\n", "overview", median(overview),
             quantile(overview, 0.95), median(overview) / base, wanted);
  fmt::print("  {:<28}{:>9.1f}{:>9}{:>9.2f}x  wanted {:.1f}\n\n", "its first opening", first, "", first / base,
             2 * wanted);
  std::fflush(stdout);
}

/// Notes when anything is drawn.
class FrameWatch {
 public:
  explicit FrameWatch(const XServer& server) : x_(server.display()) {
    if (!x_.reply(xcb_damage_query_version_reply, xcb_damage_query_version(x_.get(), 1, 1))) throw Failure("no DAMAGE");
    xcb_damage_create(x_.get(), xcb_generate_id(x_.get()), x_.root(), XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    x_.roundTrip();
  }

  /// The times at which something was drawn until nothing was for so long, each burst once. `meanwhile` runs first.
  std::vector<Clock::time_point> frames(const std::function<void()>& meanwhile, Milliseconds quiet) {
    const Deadline none(Milliseconds(0));
    while (x_.nextEvent(none)) {
    }
    meanwhile();
    std::vector<Clock::time_point> times;
    while (const auto event = x_.nextEvent(Deadline(quiet))) {
      const auto now = Clock::now();
      if (times.empty() || milliseconds(now - times.back()) > frameTime / 4) times.push_back(now);
    }
    return times;
  }

 private:
  XConnection x_;
};

struct Smoothness {
  int frames = 0;
  int dropped = 0;
};

/// A frame is dropped where the next one comes a whole frame or more too late.
Smoothness smoothness(const std::vector<Clock::time_point>& times) {
  Smoothness found{.frames = static_cast<int>(times.size())};
  for (std::size_t i = 1; i < times.size(); ++i) {
    const double late = milliseconds(times[i] - times[i - 1]) - frameTime;
    found.dropped += std::max(0, static_cast<int>(late / frameTime + 0.5));
  }
  return found;
}

void print(std::string_view what, const Smoothness& found) {
  fmt::print("  {:<28}{:>6} frames{:>5} dropped\n", what, found.frames, found.dropped);
}

void measureFrames(int rounds) {
  GridStage stage({.desktops = 16, .windows = 100}, true);
  Session& session = stage.session;
  ScreenProbe probe(session.server);
  FrameWatch watch(session.server);
  Smoothness opening;
  Smoothness closing;
  const auto add = [](Smoothness& sum, const Smoothness& more) {
    sum.frames += more.frames;
    sum.dropped += more.dropped;
  };
  for (int round = 0; round < rounds; ++round) {
    add(opening, smoothness(watch.frames([&] { session.keyboard.press(Overview::key); }, Milliseconds(250))));
    add(closing, smoothness(watch.frames([&] { session.keyboard.press(Overview::key); }, Milliseconds(250))));
    if (!stage.overview.waitUntilClosed()) throw Failure("the overview does not close");
    probe.waitForRest();
  }
  fmt::print("1920x1080, 16 desktops, 100 windows, at sixty frames a second\n");
  print("zoom on opening", opening);
  print("zoom on closing", closing);

  stage.overview.open();
  probe.waitForRest();
  const auto [fromX, fromY] = stage.overview.pointInTile(0, 16, 1920 / 20 + 40, 1080 / 20 + 40);
  const auto [toX, toY] = stage.overview.middle(15, 16);
  session.pointer.moveTo(fromX, fromY);
  session.pointer.press();
  std::thread hand;
  const auto times = watch.frames(
      [&] {
        // The frames are noted while the hand moves.
        hand = std::thread([&, fromX = fromX, fromY = fromY, toX = toX, toY = toY] {
          constexpr int steps = 120;
          auto next = Clock::now();
          for (int step = 1; step <= steps; ++step) {
            session.pointer.moveTo(fromX + (toX - fromX) * step / steps, fromY + (toY - fromY) * step / steps);
            next += std::chrono::microseconds(16'667);
            std::this_thread::sleep_until(next);
          }
        });
      },
      Milliseconds(200));
  hand.join();
  print("drag of a preview, 2 s", smoothness(times));
  session.keyboard.strike(keys::escape);
  session.pointer.release();
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = std::max(1, numberAfter("--rounds", argc, argv, 15));
  const std::string_view only = textAfter("--screen", argc, argv);
  const auto wants = [&](std::string_view what) { return only.empty() || only == what; };
  try {
    if (!findProgram("rofi")) throw Failure("rofi is not installed (scripts/packages bench)");
    for (const auto& [desktops, windows] : {std::pair(4, 20), std::pair(16, 100)}) {
      const GridStage::Size size{.desktops = desktops, .windows = windows};
      if (wants("1920x1080")) measureOpening(size, rounds, 1.0);
    }
    for (const auto& [desktops, windows] : {std::pair(4, 20), std::pair(16, 100)}) {
      const GridStage::Size size{.width = 3840, .height = 2160, .desktops = desktops, .windows = windows};
      if (wants("3840x2160")) measureOpening(size, rounds, 1.5);
    }
    if (wants("frames")) measureFrames(std::min(rounds, 5));
  } catch (const std::exception& failure) {
    fmt::print(stderr, "grid_open: {}\n", failure.what());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
