#include "bridges/YabaiBridge.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "bridges/ChildProcess.h"
#include "bridges/SpaceList.h"
#include "platform/Platform.h"
#include "settings/ConfigJson.h"
#include "settings/Log.h"
#include "settings/TextTools.h"

namespace tessaspaces::YabaiBridge {
namespace {

using Arguments = std::vector<std::string>;

struct Availability {
  bool value;
  TimePoint checkedAt;
};

struct State {
  std::optional<Availability> cachedAvailability;
  /// A lost connection was reported and no command has succeeded since.
  bool socketDownWarned = false;
  std::array<std::string, 2> candidatePaths{"/opt/homebrew/bin/yabai", "/usr/local/bin/yabai"};
  std::chrono::milliseconds timeLimit = ChildCommand{}.timeLimit;
};

std::mutex availabilityLock;  // guards state; held neither while the client runs nor while a line is logged
State state;

const Arguments querySpacesArguments{"-m", "query", "--spaces"};

bool contains(std::string_view text, std::string_view part) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  const auto found = std::search(text.begin(), text.end(), part.begin(), part.end(),
                                 [&](char one, char other) { return lower(one) == lower(other); });
  return found != text.end();
}

bool isAlreadyFocused(std::string_view errorOutput) {
  return contains(errorOutput, "already focused");
}

bool isExecutableFile(const std::string& path) {
  struct stat file {};
  return ::stat(path.c_str(), &file) == 0 && S_ISREG(file.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::optional<std::string> installedBinary() {
  for (auto& path : candidatePaths()) {
    if (isExecutableFile(path)) return std::move(path);
  }
  return std::nullopt;
}

/// The text, if it is UTF-8.
std::optional<std::string> decoded(std::string bytes) {
  const bool isPlain =
      std::none_of(bytes.begin(), bytes.end(), [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
  if (!isPlain && validUtf8(bytes) != bytes) return std::nullopt;
  return bytes;
}

void markCommandSucceeded() {
  const std::lock_guard guard(availabilityLock);
  state.socketDownWarned = false;
}

void invalidateAvailability() {
  const std::lock_guard guard(availabilityLock);
  state.cachedAvailability.reset();
}

LogLevel failedCommandLogLevel(std::string_view errorOutput) {
  if (isAlreadyFocused(errorOutput)) return LogLevel::debug;
  if (contains(errorOutput, "failed to connect to socket")) {
    const std::lock_guard guard(availabilityLock);
    return std::exchange(state.socketDownWarned, true) ? LogLevel::debug : LogLevel::warning;
  }
  if (contains(errorOutput, missionControlActiveError)) return LogLevel::warning;
  return LogLevel::error;
}

struct DetailedRun {
  bool succeeded = false;
  /// Absent when the command could not be run or did not write UTF-8.
  std::optional<std::string> output;
  /// Without white space at its ends; empty when it is not UTF-8. Says in words why a command without a word of its
  /// own was cut short.
  std::string errorOutput;
};

DetailedRun runDetailed(const Arguments& arguments) {
  ChildCommand command;
  {
    auto binary = installedBinary();
    if (!binary) return {};
    command.executable = std::move(*binary);
  }
  command.arguments = arguments;
  {
    const std::lock_guard guard(availabilityLock);
    command.timeLimit = state.timeLimit;
  }
  auto child = runChild(command);
  if (child.end == ChildEnd::launchFailed) {
    Log::warning("YABAI: unable to launch {}: {}", command.executable, child.failure);
    invalidateAvailability();
    return {};
  }
  DetailedRun run;
  run.succeeded = child.succeeded();
  run.output = decoded(std::move(child.output));
  run.errorOutput = trimmedWhiteSpace(decoded(std::move(child.errorOutput)).value_or(""));
  if (run.succeeded) {
    markCommandSucceeded();
    return run;
  }
  if (run.errorOutput.empty()) run.errorOutput = child.failure;
  // The level is found out even when nothing is written: it remembers that the connection was lost.
  const auto level = failedCommandLogLevel(run.errorOutput);
  Log::log(
      [&] {
        return fmt::format("YABAI: command '{}' failed ({}): {}", fmt::join(arguments, " "), child.status,
                           run.errorOutput);
      },
      level);
  invalidateAvailability();
  return run;
}

/// What the command wrote; absent when it failed or did not write UTF-8.
std::optional<std::string> run(const Arguments& arguments) {
  auto detailed = runDetailed(arguments);
  if (!detailed.succeeded) return std::nullopt;
  return std::move(detailed.output);
}

std::optional<SpaceList> querySpaces() {
  const auto reply = run(querySpacesArguments);
  auto list = reply ? SpaceList::parse(*reply) : std::nullopt;
  if (!list) Log::debug("YABAI: query --spaces failed");
  return list;
}

std::string orQuestionMark(std::optional<std::int64_t> count) {
  return count ? std::to_string(*count) : "?";
}

}  // namespace

std::array<std::string, 2> candidatePaths() {
  const std::lock_guard guard(availabilityLock);
  return state.candidatePaths;
}

std::string binaryPath() {
  return installedBinary().value_or(candidatePaths().back());
}

bool isInstalled() {
  return installedBinary().has_value();
}

bool isAvailable() {
  auto& clock = platform().dispatch();
  {
    const auto now = clock.now();
    const std::lock_guard guard(availabilityLock);
    const auto& cached = state.cachedAvailability;
    if (cached && now - cached->checkedAt < availabilityTTL) return cached->value;
  }
  const bool value = run({"-m", "query", "--windows"}).has_value();
  const auto now = clock.now();
  const std::lock_guard guard(availabilityLock);
  state.cachedAvailability = {value, now};
  return value;
}

std::optional<SpaceID> focusedSpaceID() {
  const auto list = querySpaces();
  return list ? list->focusedID : std::nullopt;
}

std::optional<std::int64_t> index(SpaceID ofSpace) {
  const auto list = querySpaces();
  return list ? list->index(ofSpace) : std::nullopt;
}

FocusResult focusSpace(SpaceID space) {
  const auto list = querySpaces();
  if (!list) return FocusResult::failed;
  if (list->focusedID == space) return FocusResult::alreadyThere;
  const auto index = list->index(space);
  if (!index) {
    Log::warning("YABAI: space {} not found in yabai's list", space);
    return FocusResult::failed;
  }
  const auto focus = runDetailed({"-m", "space", "--focus", std::to_string(*index)});
  if (focus.succeeded) return FocusResult::switched;
  if (isAlreadyFocused(focus.errorOutput)) {
    Log::debug("YABAI: space {} (index {}) is already focused — treating as success", space, *index);
    return FocusResult::alreadyThere;
  }
  if (contains(focus.errorOutput, missionControlActiveError)) return FocusResult::missionControlActive;
  return FocusResult::failed;
}

bool moveWindow(WindowID window, SpaceID toSpace) {
  const auto space = index(toSpace);
  return space && runDetailed({"-m", "window", std::to_string(window), "--space", std::to_string(*space)}).succeeded;
}

bool moveFocusedWindow(SpaceID toSpace) {
  const auto space = index(toSpace);
  return space && runDetailed({"-m", "window", "--space", std::to_string(*space)}).succeeded;
}

std::optional<std::int64_t> spaceCount() {
  const auto reply = run(querySpacesArguments);
  return reply ? SpaceList::countSpaces(*reply) : std::nullopt;
}

bool createSpace() {
  const auto before = spaceCount();
  if (!runDetailed({"-m", "space", "--create"}).succeeded) return false;
  const auto after = spaceCount();
  if (before && after && *after == *before + 1) return true;
  Log::error("YABAI: 'space --create' reported success but space count didn't increase (before={}, after={})",
             orQuestionMark(before), orQuestionMark(after));
  return false;
}

bool destroySpace(std::int64_t index) {
  return runDetailed({"-m", "space", std::to_string(index), "--destroy"}).succeeded;
}

std::optional<std::int64_t> windowCount(std::int64_t onSpaceIndex) {
  const auto reply = run(querySpacesArguments);
  return reply ? SpaceList::countWindows(*reply, onSpaceIndex) : std::nullopt;
}

void useCandidatePaths(std::array<std::string, 2> paths) {
  const std::lock_guard guard(availabilityLock);
  state.candidatePaths = std::move(paths);
}

void useTimeLimit(std::chrono::milliseconds limit) {
  const std::lock_guard guard(availabilityLock);
  state.timeLimit = limit;
}

void forgetEverything() {
  const std::lock_guard guard(availabilityLock);
  state = State{};
}

}  // namespace tessaspaces::YabaiBridge
