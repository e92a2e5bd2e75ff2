#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/WindowServer.h"

/// Drives the yabai window manager through its command-line client, where the user has installed it. No connection is
/// held: every operation runs the client afresh, one to three times, and blocks until it has ended, at most the time
/// limit each time. Failures are logged under "YABAI: " and come back as absence or false. Any thread; no lock is held
/// while the client runs or a line is logged.
///
/// Spaces are named by the window server's ids, except where an index is asked for: that is yabai's own number of a
/// desktop, counted from 1 over all displays, good only until desktops are added, removed or moved.
namespace tessaspaces::YabaiBridge {

/// How long an answer of isAvailable() holds, by the platform's clock.
inline constexpr std::chrono::duration<double> availabilityTTL{5.0};
/// What yabai says when it refuses a command because Mission Control is showing.
inline constexpr const char* missionControlActiveError = "mission-control is active";

/// What became of a wish to focus a space.
enum class FocusResult : int {
  switched = 0,          // yabai took the command; the display may not have arrived yet
  alreadyThere,          // the space had the focus
  missionControlActive,  // refused until Mission Control is closed
  failed,
};

/// Where the client is looked for, in this order: where the two usual package managers' folders are.
std::array<std::string, 2> candidatePaths();
/// The first candidate that is an executable file. When neither is, the second, so that a message can name a place.
std::string binaryPath();
/// Whether a candidate is an executable file. Looked up at each call.
bool isInstalled();
/// Whether yabai answers: it is installed and a query of its windows succeeds. Asked at most once in five seconds, but
/// again at once after any command failed. Two threads may ask at the same time; the later answer is kept.
bool isAvailable();

/// The focused space; absent when yabai does not answer or names none.
std::optional<SpaceID> focusedSpaceID();
/// yabai's index of the space; absent when yabai does not answer or does not list it.
std::optional<std::int64_t> index(SpaceID ofSpace);
FocusResult focusSpace(SpaceID space);

/// Whether yabai took the command, which does not mean that the window has arrived. False without asking it to when
/// yabai does not list the space.
bool moveWindow(WindowID window, SpaceID toSpace);
/// The same for the window that has the focus.
bool moveFocusedWindow(SpaceID toSpace);

/// How many desktops there are on all displays; absent when yabai does not say.
std::optional<std::int64_t> spaceCount();
/// Adds a desktop to the focused display. True when there is exactly one more afterwards: yabai reports success also
/// when nothing came of it.
bool createSpace();
/// Removes the desktop; true when yabai took the command.
bool destroySpace(std::int64_t index);
/// How many windows the desktop has; absent when yabai does not say.
std::optional<std::int64_t> windowCount(std::int64_t onSpaceIndex);

// For tests, which run a client of their own. Both take effect with the next command.
void useCandidatePaths(std::array<std::string, 2> paths);
/// For each run of the client, in real time; 10 seconds until set.
void useTimeLimit(std::chrono::milliseconds limit);
/// Everything as when the program starts, the two settings above included.
void forgetEverything();

}  // namespace tessaspaces::YabaiBridge
