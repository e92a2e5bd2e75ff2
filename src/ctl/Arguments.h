#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "model/Navigation.h"

/// What the command line asks for.
namespace tessaspaces::ctl {

enum class ExitCode : int {
  success = 0,
  refused = 1,     // understood, but it could not be done; the reason is on standard error
  usage = 2,       // the words make no command
  noPlatform = 3,  // there is no window server, or no window manager, to talk to
};

struct Help {};
struct Version {};
struct List {
  bool json = false;
};
/// To a neighbour, or to a desktop by its number from 1.
struct Switch {
  std::variant<GridDirection, int> to;
};
struct Move {
  GridDirection direction = GridDirection::left;
};
struct AddDesktop {};
struct RemoveDesktop {
  /// Counted from 1.
  int number = 0;
};
struct SelfTest {};
struct ConfigList {};
struct ConfigGet {
  std::string key;
};
struct ConfigSet {
  std::string key;
  std::string value;
};
struct ConfigUnset {
  std::string key;
};

struct UsageError {
  std::string message;
};

using Request = std::variant<UsageError, Help, Version, List, Switch, Move, AddDesktop, RemoveDesktop, SelfTest,
                             ConfigList, ConfigGet, ConfigSet, ConfigUnset>;

struct CommandLine {
  Request request;
  /// "x11" unless asked otherwise, "simulated" for trying things out.
  std::string platform = "x11";
};

CommandLine parseArguments(const std::vector<std::string>& arguments);

/// Whether the request has to ask the window server.
bool needsPlatform(const Request& request);

/// What `--help` prints.
std::string_view helpText();

}  // namespace tessaspaces::ctl
