#include "ctl/Arguments.h"

#include <charconv>
#include <optional>

namespace tessaspaces::ctl {
namespace {

using Words = std::vector<std::string>;

std::optional<int> wholeNumber(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

Request surplus(const Words& words, std::size_t expected, Request request) {
  if (words.size() <= expected) return request;
  return UsageError{"'" + words[expected] + "' is one word too many"};
}

Request parseList(const Words& words) {
  if (words.size() == 2 && words[1] == "--json") return List{true};
  return surplus(words, 1, List{});
}

Request parseSwitch(const Words& words) {
  if (words.size() < 2) return UsageError{"switch needs a direction (left, right, up, down) or a desktop number"};
  if (const auto direction = directionNamed(words[1])) return surplus(words, 2, Switch{*direction});
  if (const auto number = wholeNumber(words[1])) return surplus(words, 2, Switch{*number});
  return UsageError{"'" + words[1] + "' is neither a direction (left, right, up, down) nor a desktop number"};
}

Request parseMove(const Words& words) {
  if (words.size() < 2) return UsageError{"move needs a direction: left, right, up or down"};
  const auto direction = directionNamed(words[1]);
  if (!direction) return UsageError{"'" + words[1] + "' is no direction: left, right, up or down"};
  return surplus(words, 2, Move{*direction});
}

Request parseRemoveDesktop(const Words& words) {
  if (words.size() < 2) return UsageError{"remove-desktop needs a desktop number"};
  const auto number = wholeNumber(words[1]);
  if (!number) return UsageError{"'" + words[1] + "' is no desktop number"};
  return surplus(words, 2, RemoveDesktop{*number});
}

Request parseConfig(const Words& words) {
  const std::string action = words.size() > 1 ? words[1] : "";
  const std::size_t given = words.size();
  if (action == "list") return surplus(words, 2, ConfigList{});
  if (action == "get") {
    return given < 3 ? Request(UsageError{"config get needs a key"}) : surplus(words, 3, ConfigGet{words[2]});
  }
  if (action == "set") {
    if (given < 4) return UsageError{"config set needs a key and a value"};
    return surplus(words, 4, ConfigSet{words[2], words[3]});
  }
  if (action == "unset") {
    return given < 3 ? Request(UsageError{"config unset needs a key"}) : surplus(words, 3, ConfigUnset{words[2]});
  }
  return UsageError{"config needs one of: list, get KEY, set KEY VALUE, unset KEY"};
}

Request parseRequest(const Words& words) {
  if (words.empty()) return UsageError{"a command is missing"};
  const std::string& command = words[0];
  if (command == "help") return Help{};
  if (command == "list") return parseList(words);
  if (command == "switch") return parseSwitch(words);
  if (command == "move") return parseMove(words);
  if (command == "add-desktop") return surplus(words, 1, AddDesktop{});
  if (command == "remove-desktop") return parseRemoveDesktop(words);
  if (command == "selftest") return surplus(words, 1, SelfTest{});
  if (command == "config") return parseConfig(words);
  return UsageError{"there is no command '" + command + "'"};
}

}  // namespace

CommandLine parseArguments(const std::vector<std::string>& arguments) {
  CommandLine line;
  Words words;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    // Options may stand before the command; after it only the command's own words do, so that a value
    // being set may look like an option.
    if (words.empty() && (argument == "-h" || argument == "--help")) return {Help{}, line.platform};
    if (words.empty() && argument == "--version") return {Version{}, line.platform};
    if (words.empty() && argument == "--platform") {
      if (++i == arguments.size()) return {UsageError{"--platform needs a name"}, line.platform};
      line.platform = arguments[i];
      continue;
    }
    if (words.empty() && argument.starts_with("-")) {
      return {UsageError{"there is no option '" + argument + "'"}, line.platform};
    }
    words.push_back(argument);
  }
  const bool asksForHelp = words.size() > 1 && (words[1] == "--help" || words[1] == "-h");
  line.request = asksForHelp ? Request(Help{}) : parseRequest(words);
  return line;
}

bool needsPlatform(const Request& request) {
  return std::holds_alternative<List>(request) || std::holds_alternative<Switch>(request) ||
         std::holds_alternative<Move>(request) || std::holds_alternative<AddDesktop>(request) ||
         std::holds_alternative<RemoveDesktop>(request);
}

std::string_view helpText() {
  return R"(Usage: tessactl [--platform x11|simulated] COMMAND

Moves through the grid of desktops on the display under the pointer.

  list [--json]                     the displays with their desktops and windows
  switch left|right|up|down         go to the neighbour in the grid
  switch N                          go to desktop N, counted from 1
  move left|right|up|down           carry the focused window to the neighbour
  add-desktop                       one more desktop, after the last
  remove-desktop N                  remove desktop N; its windows go to a neighbour
  selftest                          check the arithmetic of the grid
  config list                       every setting with its value
  config get KEY                    one value
  config set KEY VALUE              change it; a running tessaspaces takes it over at once
  config unset KEY                  return to the default

  -h, --help                        this text
  --version                         the version

Exit status: 0 done; 1 it could not be done; 2 no such command; 3 no window server
or no window manager to talk to.
)";
}

}  // namespace tessaspaces::ctl
