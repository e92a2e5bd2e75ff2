#include "platform/x11/I3Workspaces.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "platform/x11/Text.h"

namespace tessaspaces {
namespace {

using Workspaces = std::vector<I3Workspace>;

std::optional<std::string> outputAt(I3Socket& socket, const PixelRect& monitor) {
  const auto outputs = socket.outputs();
  if (!outputs) return std::nullopt;
  // By its place: names differ where i3 does not ask RandR.
  const auto found = std::find_if(outputs->begin(), outputs->end(), [&](const I3Output& output) {
    return output.active && output.x == monitor.x && output.y == monitor.y;
  });
  return found == outputs->end() ? std::nullopt : std::optional(found->name);
}

Workspaces workspacesOn(const std::string& output, const Workspaces& all) {
  Workspaces result;
  std::copy_if(all.begin(), all.end(), std::back_inserter(result),
               [&](const I3Workspace& workspace) { return workspace.output == output; });
  return result;
}

const I3Workspace* shownOf(const Workspaces& workspaces) {
  const auto found = std::find_if(workspaces.begin(), workspaces.end(), [](const auto& each) { return each.visible; });
  return found == workspaces.end() ? nullptr : &*found;
}

// A user may have set that visiting the workspace that is shown goes back to the last one: never meant here.
constexpr auto visit = "workspace --no-auto-back-and-forth ";

std::string visitNamed(const std::string& name) {
  return visit + quoteForI3(name);
}

long long freeNumber(const std::string& output, const Workspaces& all, const std::vector<I3Assignment>& assignments) {
  long long number = 0;
  for (const auto& workspace : all) {
    if (workspace.output == output) number = std::max<long long>(number, workspace.number);
  }
  const auto isFree = [&](long long candidate) {
    return std::none_of(all.begin(), all.end(), [&](const auto& each) { return each.number == candidate; }) &&
           std::none_of(assignments.begin(), assignments.end(),
                        [&](const auto& each) { return each.number == candidate && each.output != output; });
  };
  do ++number;
  while (!isFree(number));
  return number;
}

std::string_view takeWord(std::string_view& line) {
  line = trim(line);
  const auto word = line.substr(0, line.find_first_of(" \t"));
  line.remove_prefix(word.size());
  return word;
}

/// The name of the workspace and what the line says of its output; an empty output where it speaks of something else.
std::pair<std::string_view, std::string_view> splitAssignment(std::string_view line) {
  line = trim(line);
  constexpr std::string_view keyword = "output";
  if (line.starts_with('"')) {
    const auto end = line.find('"', 1);
    if (end == std::string_view::npos) return {};
    const auto name = line.substr(1, end - 1);
    line.remove_prefix(end + 1);
    return {name, takeWord(line) == keyword ? takeWord(line) : std::string_view()};
  }
  const auto name = line;
  while (!line.empty()) {
    const auto before = line;
    if (takeWord(line) == keyword) return {name.substr(0, name.size() - before.size()), takeWord(line)};
  }
  return {};
}

}  // namespace

std::vector<I3Assignment> parseI3Assignments(std::string_view config) {
  std::vector<I3Assignment> assignments;
  while (!config.empty()) {
    auto line = takeLine(config);
    if (takeWord(line) != "workspace") continue;
    auto [name, output] = splitAssignment(line);
    if (output.size() > 1 && output.starts_with('"') && output.ends_with('"'))
      output = output.substr(1, output.size() - 2);
    int number = -1;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error == std::errc() && number >= 0 && !output.empty()) assignments.push_back({number, std::string(output)});
  }
  return assignments;
}

bool addI3Workspace(I3Socket& socket, const PixelRect& monitor, const std::set<std::string>& occupied) {
  const auto output = outputAt(socket, monitor);
  const auto all = output ? socket.workspaces() : std::nullopt;
  const auto config = all ? socket.config() : std::nullopt;
  if (!config) return false;
  const auto here = workspacesOn(*output, *all);
  const auto* shown = shownOf(here);
  if (shown == nullptr || !occupied.contains(shown->name)) return false;
  const auto number = freeNumber(*output, *all, parseI3Assignments(*config));
  // A new workspace opens on the output that has the focus, and visiting what an output shows gives it that.
  return socket.run(visitNamed(shown->name) + "; " + visit + "number " + std::to_string(number));
}

bool removeI3Workspace(I3Socket& socket, const PixelRect& monitor, const std::string& name) {
  const auto output = outputAt(socket, monitor);
  const auto all = output ? socket.workspaces() : std::nullopt;
  if (!all) return false;
  const auto here = workspacesOn(*output, *all);
  const auto removed = std::find_if(here.begin(), here.end(), [&](const auto& each) { return each.name == name; });
  if (removed == here.end() || here.size() < 2) return false;
  const auto& neighbour = removed == here.begin() ? *std::next(removed) : *std::prev(removed);

  // In one message, which i3 draws the end of only.
  std::string commands = "[workspace=" + patternForI3(name) +
                         "] move --no-auto-back-and-forth container to workspace " + quoteForI3(neighbour.name);
  if (removed->visible) {
    commands += "; " + visitNamed(neighbour.name);
    const auto focused = std::find_if(all->begin(), all->end(), [](const auto& each) { return each.focused; });
    if (focused != all->end() && focused->name != name) commands += "; " + visitNamed(focused->name);
  }
  // Whether it worked shows in the desktops; an empty workspace has no container to move, which counts as a failure.
  socket.run(commands);
  return true;
}

}  // namespace tessaspaces
