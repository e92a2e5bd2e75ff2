#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

#include "settings/Enums.h"

namespace tessaspaces {

/// "[2026-11-21 05:54:00 +0000] [INFO] message" and a line feed; the time is in UTC.
[[nodiscard]] std::string logLine(std::chrono::system_clock::time_point time, LogLevel level, std::string_view message);

/// Appends a line to the file, making it where it is missing, and afterwards moves a file that had at least
/// `maxBytes` bytes before to the same name with ".1", in place of what was there. Several processes may
/// append to one file. Failures are swallowed. The caller serialises the threads of this process.
void appendToLog(const std::filesystem::path& file, std::string_view line, long long maxBytes);

/// Moves the file to its backup if `descriptor` is open on it still and no other process is at it.
void rotateLog(int descriptor, const std::filesystem::path& file);

}  // namespace tessaspaces
