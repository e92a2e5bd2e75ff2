#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tessaspaces {

/// What the command line asks for.
struct Options {
  enum class Task { run, testGrid, showVersion, showHelp };
  enum class PlatformChoice { automatic, x11, simulated };

  Task task = Task::run;
  PlatformChoice platform = PlatformChoice::automatic;
};

/// The arguments after the program's name. Absent, with the reason in `error`, when they cannot be understood.
[[nodiscard]] std::optional<Options> parseOptions(std::span<const char* const> arguments, std::string& error);

[[nodiscard]] std::string_view helpText();

}  // namespace tessaspaces
