#include "app/Options.h"

namespace tessaspaces {
namespace {

std::optional<Options::PlatformChoice> platformNamed(std::string_view name) {
  if (name == "auto") return Options::PlatformChoice::automatic;
  if (name == "x11") return Options::PlatformChoice::x11;
  if (name == "simulated") return Options::PlatformChoice::simulated;
  return std::nullopt;
}

}  // namespace

std::optional<Options> parseOptions(std::span<const char* const> arguments, std::string& error) {
  constexpr std::string_view platformOption = "--platform";
  constexpr std::string_view platformPrefix = "--platform=";
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--version") {
      options.task = Options::Task::showVersion;
    } else if (argument == "--test-grid") {
      options.task = Options::Task::testGrid;
    } else if (argument == "--help" || argument == "-h") {
      options.task = Options::Task::showHelp;
    } else if (argument == platformOption || argument.substr(0, platformPrefix.size()) == platformPrefix) {
      std::string_view name;
      if (argument != platformOption) {
        name = argument.substr(platformPrefix.size());
      } else if (i + 1 < arguments.size()) {
        name = arguments[++i];
      }
      const auto choice = platformNamed(name);
      if (!choice) {
        error = "--platform takes x11, simulated or auto, not '" + std::string(name) + "'";
        return std::nullopt;
      }
      options.platform = *choice;
    } else {
      error = "unknown argument '" + std::string(argument) + "'; see --help";
      return std::nullopt;
    }
  }
  return options;
}

std::string_view helpText() {
  return "Usage: tessaspaces [--platform auto|x11|simulated] [--test-grid]\n"
         "\n"
         "Lays your virtual desktops out as a grid and moves through it by global hot keys.\n"
         "Runs until it is quit from its icon in the system tray, or by a signal.\n"
         "\n"
         "  --platform auto       the X display that DISPLAY names (the default)\n"
         "  --platform x11        the same\n"
         "  --platform simulated  a made-up window server inside the program, to look at its windows\n"
         "  --test-grid           open the overview, check what it shows, tell in words, and end\n"
         "  --version             print the version\n"
         "  --help                print this\n"
         "\n"
         "Settings are in ~/.config/tessaspaces/config.json; tessactl changes them while this runs.\n";
}

}  // namespace tessaspaces
