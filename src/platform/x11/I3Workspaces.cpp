#include "platform/x11/I3Workspaces.h"

#include <algorithm>
#include <iterator>

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

long long freeNumberAfter(const Workspaces& here, const Workspaces& all) {
  long long number = 0;
  for (const auto& workspace : here) number = std::max<long long>(number, workspace.number);
  const auto isTaken = [&](long long candidate) {
    return std::any_of(all.begin(), all.end(), [&](const auto& each) { return each.number == candidate; });
  };
  do ++number;
  while (isTaken(number));
  return number;
}

}  // namespace

bool addI3Workspace(I3Socket& socket, const PixelRect& monitor, const std::set<std::string>& occupied) {
  const auto output = outputAt(socket, monitor);
  const auto before = output ? socket.workspaces() : std::nullopt;
  if (!before) return false;
  const auto here = workspacesOn(*output, *before);
  const auto* shown = shownOf(here);
  if (shown == nullptr || !occupied.contains(shown->name)) return false;
  const auto number = freeNumberAfter(here, *before);
  // A new workspace opens on the output that has the focus, and visiting what an output shows gives it that.
  const auto open = visit + ("number " + std::to_string(number));
  if (!socket.run(visitNamed(shown->name) + "; " + open)) return false;

  const auto after = socket.workspaces();
  if (!after) return true;
  const auto opened =
      std::find_if(after->begin(), after->end(), [&](const auto& each) { return each.number == number; });
  if (opened == after->end() || opened->output == *output) return true;
  // The user's configuration gives this number to another output. Bring it over, and that one back to what it showed.
  const auto there = workspacesOn(opened->output, *before);
  std::string commands = "move workspace to output " + quoteForI3(*output);
  if (const auto* displaced = shownOf(there)) commands += "; " + visitNamed(displaced->name);
  socket.run(commands + "; " + open);
  return true;
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
