#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "harness/Session.h"

namespace tessaspaces::bench {

// What the benchmarks of single commands share: the same desktops, the same four ways, the same clock.

inline constexpr int desktops = 4;
inline constexpr int windows = 20;  // spread evenly over the desktops
/// Rounds that do not count.
inline constexpr int warmUp = 8;

/// Sees a property of a window change and says when the notice arrived. Asks the server nothing in between: a question
/// under way would stand in the way of what is measured.
class Watch {
 public:
  Watch(const harness::XServer& server, xcb_window_t window, std::string_view property);
  /// On the root window.
  Watch(const harness::XServer& server, std::string_view property);
  /// Drops the changes so far.
  void forget() const;
  [[nodiscard]] std::optional<harness::Clock::time_point> change() const;

 private:
  harness::XConnection x_;
  xcb_atom_t property_ = XCB_ATOM_NONE;
};

/// One way to have a command carried out.
struct Way {
  std::string name;
  std::uint32_t modifiers = 0;  // 0: the bare message
  std::vector<double> samples;  // in milliseconds
  int failures = 0;

  /// Takes the outcome of a round; none is a failure, and rounds below 0 are the warm-up.
  void take(std::optional<double> sample, int round);
};

enum WayIndex : std::size_t { ownKey, thisProgram, sxhkdRunningWmctrl, bareMessage };
/// The ways to compare, in the order of WayIndex, with the modifiers that each one's key has.
[[nodiscard]] std::array<Way, 4> fourWays(std::uint32_t ownModifiers, std::uint32_t programModifiers);
/// sxhkd's modifiers in `fourWays`.
inline constexpr std::uint32_t sxhkdModifiers = KeyCombo::control | KeyCombo::shift;

[[nodiscard]] harness::SessionOptions sessionOptions(harness::Manager manager);
void openWindows(harness::Session& session);

/// sxhkd with one binding per desktop that runs `command` with the desktop's number from 0 for the "{}" in it. Known to
/// work when this returns: `works` tries it out.
[[nodiscard]] harness::Process startSxhkd(const harness::Session& session, std::string_view command,
                                          const std::function<bool()>& works);

/// Milliseconds from the key press, or from `message` where the combo has no modifiers, to the change that is watched.
/// `lead` comes right before it, with the modifiers held and the clock not yet running.
[[nodiscard]] std::optional<double> timeToChange(const harness::Session& session, const Watch& watch, KeyCombo key,
                                                 const std::function<void()>& message,
                                                 const std::function<void()>& lead = {});

/// Lets everybody finish before the next round starts: the window manager answers a request that comes after all
/// others. `desktop` is the one that is shown.
void settle(harness::Session& session, int desktop);

void printHeading(std::string_view manager, int rounds);
/// Medians and 95th percentiles, beside the bare message and sxhkd.
void printWays(const std::array<Way, 4>& ways);

/// A whole benchmark: `run` for each of openbox, xfwm4 and i3, or for the one after "--wm", with the number after
/// "--rounds". It prints what it found and is false when something did not happen. The exit status.
int forEachManager(std::string_view program, int argc, char** argv, int defaultRounds,
                   const std::function<bool(harness::Manager, int rounds)>& run);

}  // namespace tessaspaces::bench
