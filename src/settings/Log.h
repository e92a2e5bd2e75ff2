#pragma once

#include <fmt/format.h>

#include <concepts>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "settings/Enums.h"

namespace tessaspaces {

/// One plain-text file beside the configuration, rotated to one backup at 2 MiB. A message above the level
/// in the settings is never even built. Logging never fails its caller. Any thread, but never while a lock
/// is held that the settings need.
namespace Log {

/// Rotate once the log has at least this many bytes before a line is written: 2 MiB.
inline constexpr long long maxLogBytes = 2097152;

/// Whether lines of this level are written now.
[[nodiscard]] bool isEnabled(LogLevel level);

/// Writes a line whatever the level in the settings is; for the operations below.
void write(LogLevel level, std::string_view message);

/// Writes what `message()` returns, which is only called when the level is written.
template <std::invocable Message>
requires std::convertible_to<std::invoke_result_t<Message>, std::string_view>
void log(Message&& message, LogLevel level = LogLevel::debug) {
  if (isEnabled(level)) write(level, std::invoke(std::forward<Message>(message)));
}

// The arguments are evaluated by the caller, but put together only when the level is written.
template <class... Args>
void error(fmt::format_string<Args...> format, Args&&... args) {
  if (isEnabled(LogLevel::error)) write(LogLevel::error, fmt::format(format, std::forward<Args>(args)...));
}
template <class... Args>
void warning(fmt::format_string<Args...> format, Args&&... args) {
  if (isEnabled(LogLevel::warning)) write(LogLevel::warning, fmt::format(format, std::forward<Args>(args)...));
}
template <class... Args>
void info(fmt::format_string<Args...> format, Args&&... args) {
  if (isEnabled(LogLevel::info)) write(LogLevel::info, fmt::format(format, std::forward<Args>(args)...));
}
template <class... Args>
void debug(fmt::format_string<Args...> format, Args&&... args) {
  if (isEnabled(LogLevel::debug)) write(LogLevel::debug, fmt::format(format, std::forward<Args>(args)...));
}

/// tessaspaces.log in ConfigStore::directory().
[[nodiscard]] std::filesystem::path fileURL();
/// The same for people: the home folder is written as "~".
[[nodiscard]] std::string displayPath();

/// Takes in what the layers below report (see base/Report.h). Call once, before other threads start.
void takeReports();

}  // namespace Log
}  // namespace tessaspaces
