#include "ctl/Commands.h"

#include <ostream>

#include "ctl/ConfigCommands.h"
#include "ctl/DesktopCommands.h"
#include "ctl/ListCommand.h"
#include "model/HotkeyCommands.h"
#include "platform/Platform.h"
#include "settings/Settings.h"

namespace tessaspaces::ctl {
namespace {

/// Why nothing lies in that direction, in words that name the setting to change.
std::string edgeReason(GridDirection direction, const Spaces::DesktopPlan& plan) {
  const bool vertical = direction == GridDirection::up || direction == GridDirection::down;
  static constexpr const char* words[] = {"to the left of", "to the right of", "above", "below"};
  const std::string reason = std::string("nothing lies ") + words[static_cast<std::size_t>(direction)] + " desktop " +
                             std::to_string(plan.fromIndex.value_or(0) + 1);
  if (!Settings::circulationEnabled()) return reason + " (tessaspaces.circulation.enabled is off)";
  if (vertical && !Settings::circulateVertically()) return reason + " (tessaspaces.circulation.vertical is off)";
  return reason;
}

std::string reasonFor(const Spaces::DesktopPlan& plan) {
  switch (plan.outcome) {
    case Spaces::CommandOutcome::noDisplay: return "there is no display under the pointer";
    case Spaces::CommandOutcome::noCurrentDesktop: return "the display under the pointer shows none of its desktops";
    case Spaces::CommandOutcome::noSuchDesktop:
      return "there is no such desktop; this display has " + std::to_string(plan.display.snap.desktops.size());
    case Spaces::CommandOutcome::noFocusedWindow: return "no window has the focus";
    case Spaces::CommandOutcome::unsupported:
      return "this system needs yabai to move windows of other programs, and yabai does not answer";
    case Spaces::CommandOutcome::ready:
    case Spaces::CommandOutcome::atGridEdge: break;
  }
  return {};
}

ExitCode refuse(std::ostream& err, const std::string& reason) {
  err << "tessactl: " << reason << '\n';
  return ExitCode::refused;
}

ExitCode run(const Switch& request, std::ostream& /*out*/, std::ostream& err) {
  const auto* direction = std::get_if<GridDirection>(&request.to);
  const auto plan =
      direction ? Spaces::planSwitchToNeighbor(*direction) : Spaces::planSwitchToDesktop(std::get<int>(request.to));
  if (direction && plan.outcome == Spaces::CommandOutcome::atGridEdge) {
    return refuse(err, edgeReason(*direction, plan));
  }
  if (plan.outcome != Spaces::CommandOutcome::ready) return refuse(err, reasonFor(plan));
  if (Spaces::switchTo(plan.target)) return ExitCode::success;
  return refuse(err, "the window manager did not go to desktop " + std::to_string(plan.toIndex + 1));
}

ExitCode run(const Move& request, std::ostream& /*out*/, std::ostream& err) {
  const auto plan = Spaces::planMoveFocusedWindow(request.direction);
  if (plan.desktop.outcome == Spaces::CommandOutcome::atGridEdge) {
    return refuse(err, edgeReason(request.direction, plan.desktop));
  }
  if (plan.desktop.outcome != Spaces::CommandOutcome::ready) return refuse(err, reasonFor(plan.desktop));
  if (Spaces::carryOut(plan)) return ExitCode::success;
  return refuse(err,
                "the window manager did not move the window to desktop " + std::to_string(plan.desktop.toIndex + 1));
}

ExitCode run(const SelfTest& /*request*/, std::ostream& out, std::ostream& err) {
  const auto result = Spaces::runCirculationSelfTest();
  (result.failures == 0 ? out : err) << result.report << '\n';
  return result.failures == 0 ? ExitCode::success : ExitCode::refused;
}

ExitCode run(const UsageError& error, std::ostream& /*out*/, std::ostream& err) {
  err << "tessactl: " << error.message << "\nTry 'tessactl --help'.\n";
  return ExitCode::usage;
}

ExitCode run(const Help& /*request*/, std::ostream& out, std::ostream& /*err*/) {
  out << helpText();
  return ExitCode::success;
}

ExitCode run(const Version& /*request*/, std::ostream& out, std::ostream& /*err*/) {
  out << "tessactl " << TESSASPACES_VERSION << '\n';
  return ExitCode::success;
}

}  // namespace

ExitCode run(const Request& request, std::ostream& out, std::ostream& err) {
  if (needsPlatform(request) && !platform().windowServer().windowManagerName()) {
    err << "tessactl: no window manager that understands desktops is running\n";
    return ExitCode::noPlatform;
  }
  return std::visit([&](const auto& command) { return run(command, out, err); }, request);
}

}  // namespace tessaspaces::ctl
