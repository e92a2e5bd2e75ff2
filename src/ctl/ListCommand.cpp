#include "ctl/ListCommand.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <ostream>

#include "model/Snapshot.h"
#include "settings/Settings.h"

namespace tessaspaces::ctl {
namespace {

/// One display's share of a snapshot.
struct DisplayDesktops {
  std::string uuid;
  std::string name;
  std::vector<DesktopRef> desktops;
};

std::vector<DisplayDesktops> byDisplay(const SpacesSnapshot& snapshot) {
  std::vector<DisplayDesktops> displays;
  for (const auto& desktop : snapshot.desktops) {
    if (displays.empty() || displays.back().uuid != desktop->displayUUID) {
      displays.push_back({desktop->displayUUID, desktop->screen ? desktop->screen->name : "", {}});
    }
    displays.back().desktops.push_back(desktop);
  }
  return displays;
}

nlohmann::json toJson(const SpaceWindow& window) {
  return {{"id", window.id},
          {"title", window.title},
          {"pid", window.pid},
          {"x", window.bounds.x},
          {"y", window.bounds.y},
          {"width", window.bounds.width},
          {"height", window.bounds.height}};
}

nlohmann::json toJson(const DisplayDesktops& display) {
  nlohmann::json desktops = nlohmann::json::array();
  for (std::size_t i = 0; i < display.desktops.size(); ++i) {
    const auto& desktop = *display.desktops[i];
    nlohmann::json windows = nlohmann::json::array();
    for (const auto& window : desktop.windows) windows.push_back(toJson(window));
    desktops.push_back({{"number", i + 1},
                        {"space", desktop.spaceID},
                        {"name", desktop.label(static_cast<int>(i))},
                        {"identifier", desktop.nicknameKey()},
                        {"current", desktop.isCurrent},
                        {"windows", std::move(windows)}});
  }
  return {{"name", display.name},
          {"identifier", display.uuid},
          {"rows", Settings::gridRows(display.uuid)},
          {"columns", Settings::gridColumns(display.uuid)},
          {"desktops", std::move(desktops)}};
}

/// A title comes from anywhere, a web page for one: it must not command the terminal.
std::string printable(std::string text) {
  for (char& character : text) {
    if (static_cast<unsigned char>(character) < 0x20 || character == 0x7f) character = ' ';
  }
  return text;
}

void print(const DisplayDesktops& display, std::ostream& out) {
  out << fmt::format("{}  (grid of {} rows, {} columns; {})\n", display.name, Settings::gridRows(display.uuid),
                     Settings::gridColumns(display.uuid), display.uuid);
  for (std::size_t i = 0; i < display.desktops.size(); ++i) {
    const auto& desktop = *display.desktops[i];
    out << fmt::format("  {} {:>2}  {}\n", desktop.isCurrent ? '*' : ' ', i + 1,
                       printable(desktop.label(static_cast<int>(i))));
    for (const auto& window : desktop.windows) {
      out << fmt::format("          {:#x}  {}\n", window.id,
                         window.title.empty() ? "(no title)" : printable(window.title));
    }
  }
}

}  // namespace

ExitCode run(const List& request, std::ostream& out, std::ostream& err) {
  const auto displays = byDisplay(Spaces::enumerate(Spaces::WithWindows::yes));
  if (displays.empty()) {
    err << "tessactl: the window server names no desktops\n";
    return ExitCode::refused;
  }
  if (!request.json) {
    for (const auto& display : displays) print(display, out);
    return ExitCode::success;
  }
  nlohmann::json document{{"displays", nlohmann::json::array()}};
  for (const auto& display : displays) document["displays"].push_back(toJson(display));
  // A title that is not UTF-8 must not spoil the whole list.
  out << document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
  return ExitCode::success;
}

}  // namespace tessaspaces::ctl
