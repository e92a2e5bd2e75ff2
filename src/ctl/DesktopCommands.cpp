#include "ctl/DesktopCommands.h"

#include <ostream>

#include "bridges/DesktopEditing.h"
#include "model/DisplayScreens.h"
#include "model/Snapshot.h"

namespace tessaspaces::ctl {
namespace {

ExitCode refuse(std::ostream& err, std::string_view reason) {
  err << "tessactl: " << reason << '\n';
  return ExitCode::refused;
}

constexpr std::string_view noDisplay = "there is no display under the pointer";

}  // namespace

ExitCode run(const AddDesktop& /*request*/, std::ostream& /*out*/, std::ostream& err) {
  const auto display = Spaces::displayUUID(Spaces::screenWithCursor());
  if (!display) return refuse(err, noDisplay);
  if (Spaces::addDesktop(*display)) return ExitCode::success;
  return refuse(err, "the window manager did not add a desktop");
}

ExitCode run(const RemoveDesktop& request, std::ostream& /*out*/, std::ostream& err) {
  const auto display = Spaces::displayUUID(Spaces::screenWithCursor());
  if (!display) return refuse(err, noDisplay);
  auto desktops = Spaces::enumerate(Spaces::WithWindows::no).desktops;
  std::erase_if(desktops, [&](const auto& desktop) { return desktop->displayUUID != *display; });
  const auto count = static_cast<int>(desktops.size());
  if (request.number < 1 || request.number > count) {
    return refuse(err, "there is no such desktop; this display has " + std::to_string(count));
  }
  const auto& desktop = *desktops[static_cast<std::size_t>(request.number - 1)];
  if (const auto reason = Spaces::failureText(Spaces::removeDesktop(*display, desktop.spaceID))) {
    return refuse(err, *reason);
  }
  return ExitCode::success;
}

}  // namespace tessaspaces::ctl
