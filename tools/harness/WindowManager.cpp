#include "harness/WindowManager.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>

#include "harness/WindowManagerFiles.h"

namespace tessaspaces::harness {
namespace {

constexpr std::array<std::pair<Manager, std::string_view>, 6> names{{{Manager::none, "none"},
                                                                     {Manager::openbox, "openbox"},
                                                                     {Manager::xfwm4, "xfwm4"},
                                                                     {Manager::i3, "i3"},
                                                                     {Manager::icewm, "icewm"},
                                                                     {Manager::metacity, "metacity"}}};

}  // namespace

std::string_view nameOf(Manager manager) {
  return std::find_if(names.begin(), names.end(), [&](const auto& entry) { return entry.first == manager; })->second;
}

std::optional<Manager> managerNamed(std::string_view name) {
  for (const auto& entry : names) {
    if (entry.second == name) return entry.first;
  }
  return std::nullopt;
}

WindowManager::WindowManager(const XServer& server, Manager manager, WindowManagerOptions options)
    : server_(&server), manager_(manager), options_(std::move(options)), probe_(server), keeper_(server) {
  start();
}

void WindowManager::replaceWith(Manager manager) {
  stop();
  manager_ = manager;
  start();
}

void WindowManager::stop() {
  process_ = Process();
  for (const xcb_window_t window : kept_) keeper_.close(window);
  kept_.clear();
}

void WindowManager::start() {
  if (manager_ == Manager::none) return;
  const Launch launch = prepareWindowManager(*server_, manager_, options_);
  process_ = server_->start(launch.arguments, launch.environment);
  // The check window of the one before dies with it, so that a name that is there is the new one's.
  if (!probe_.waitFor([&] { return probe_.windowManager().has_value(); })) {
    throw Failure(fmt::format("{} did not start:\n{}", nameOf(manager_), process_.output()));
  }
  tryOut();
  if (manager_ == Manager::i3) {
    keepDesktopsOpen();
  } else if (probe_.desktopCount() != options_.desktops) {
    probe_.setDesktopCount(options_.desktops);
  }
  const bool ready = probe_.waitFor([&] { return probe_.desktopCount() == options_.desktops; });
  if (!ready) throw Failure(fmt::format("{} does not come to {} desktops", nameOf(manager_), options_.desktops));
  if (probe_.currentDesktop() != 0) probe_.switchTo(0);
  if (!probe_.waitForDesktop(0)) throw Failure(fmt::format("{} does not switch desktops", nameOf(manager_)));
}

void WindowManager::tryOut() {
  const xcb_window_t trial = keeper_.openUnmanaged({.title = "trial", .frame = {0, 0, 8, 8}});
  const Deadline deadline(patience);
  while (!probe_.waitFor([&] { return probe_.manages(trial); }, Milliseconds(50))) {
    if (deadline.passed()) throw Failure(fmt::format("{} takes no windows", nameOf(manager_)));
    xcb_map_window(keeper_.connection().get(), trial);
    keeper_.connection().flush();
  }
  keeper_.close(trial);
  probe_.waitFor([&] { return !probe_.manages(trial); });
}

void WindowManager::keepDesktopsOpen() {
  for (int desktop = 0; desktop < options_.desktops; ++desktop) {
    WindowSpec spec;
    spec.title = fmt::format("desktop {}", desktop + 1);
    spec.instance = "keeper";
    spec.className = "Keeper";
    spec.colour = 0x20252B;
    // Which index it lands on is known only once all of them are there: i3 numbers what exists.
    spec.desktop = desktop;
    kept_.push_back(keeper_.openUnmanaged(spec));
  }
  // With several monitors the numbers follow i3's own order of them, whatever the names say.
  const bool numbered = options_.monitors.empty();
  const bool there = probe_.waitFor([&] {
    std::set<int> desktops;
    for (std::size_t i = 0; i < kept_.size(); ++i) {
      const auto desktop = probe_.manages(kept_[i]) ? probe_.desktopOf(kept_[i]) : std::nullopt;
      if (!desktop || (numbered && *desktop != static_cast<int>(i))) return false;
      desktops.insert(*desktop);
    }
    return desktops.size() == kept_.size();
  });
  if (!there) throw Failure("i3 did not make its workspaces:\n" + process_.output());
}

}  // namespace tessaspaces::harness
