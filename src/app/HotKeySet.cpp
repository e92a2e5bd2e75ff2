#include "app/HotKeySet.h"

#include <array>
#include <functional>
#include <span>
#include <string>

#include "hotkeys/HotKeyCenter.h"
#include "model/DisplayScreens.h"
#include "model/HotkeyCommands.h"
#include "settings/Log.h"
#include "settings/Settings.h"

namespace tessaspaces::HotKeySet {
namespace {

/// In the order of KeyCombo::arrowKeyCodes.
constexpr std::array directions{GridDirection::left, GridDirection::right, GridDirection::up, GridDirection::down};

/// What the labels of a group begin with.
constexpr std::string_view labelPrefix(HotkeyGroup group) {
  switch (group) {
    case HotkeyGroup::changeSpace: return "change space ";
    case HotkeyGroup::moveWindow: return "move window ";
    case HotkeyGroup::changeSpaceDirect: return "desktop ";
  }
  return "";
}

std::span<const std::uint32_t> keyCodes(HotkeyGroup group) {
  if (group == HotkeyGroup::changeSpaceDirect) return KeyCombo::digitKeyCodes;
  return KeyCombo::arrowKeyCodes;
}

std::function<void()> action(HotkeyGroup group, std::size_t index) {
  switch (group) {
    case HotkeyGroup::changeSpace: return [index] { Spaces::switchToNeighbor(directions[index]); };
    case HotkeyGroup::moveWindow: return [index] { Spaces::moveFocusedWindowToNeighbor(directions[index]); };
    case HotkeyGroup::changeSpaceDirect:
      return [number = static_cast<int>(index) + 1] { Spaces::switchToDesktop(number); };
  }
  return {};
}

/// Registers one group; how the log names its keys.
std::string registerGroup(HotkeyGroup group) {
  const std::uint32_t modifiers = Settings::modifiers(group);
  if (modifiers == 0) return "off";
  const bool digits = group == HotkeyGroup::changeSpaceDirect;
  const auto keys = combos(group, modifiers);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const std::string which = digits ? std::to_string(i + 1) : std::string(name(directions[i]));
    HotKeyCenter::shared().registerHotKey(keys[i], std::string(labelPrefix(group)) + which, action(group, i));
  }
  return KeyCombo::modifierSymbols(modifiers) + (digits ? "+digits" : "+arrows");
}

}  // namespace

std::vector<KeyCombo> combos(HotkeyGroup group, std::uint32_t modifiers) {
  std::vector<KeyCombo> all;
  if (modifiers == 0) return all;
  for (const std::uint32_t keyCode : keyCodes(group)) all.push_back({keyCode, modifiers});
  return all;
}

std::optional<HotkeyGroup> groupOf(std::string_view label) {
  for (const HotkeyGroup group : allCases<HotkeyGroup>()) {
    if (label.substr(0, labelPrefix(group).size()) == labelPrefix(group)) return group;
  }
  return std::nullopt;
}

void registerAll(OverviewGrid* grid) {
  auto& center = HotKeyCenter::shared();
  center.unregisterAll();
  const std::string change = registerGroup(HotkeyGroup::changeSpace);
  const std::string move = registerGroup(HotkeyGroup::moveWindow);
  const std::string direct = registerGroup(HotkeyGroup::changeSpaceDirect);

  KeyCombo overview = KeyCombo::none();
  KeyCombo toggleView = KeyCombo::none();
  if (grid != nullptr) {
    overview = Settings::overviewGridCombo();
    toggleView = Settings::gridViewToggleCombo();
    center.registerHotKey(overview, "overview grid", [grid] { toggle(*grid, Spaces::screenWithCursor()); });
    center.registerHotKey(toggleView, "toggle grid view", [grid] { grid->toggleGridView(); });
  }
  Log::debug("HOTKEY: registered — change={} move={} direct={} overview={} toggleView={}", change, move, direct,
             overview.display(), toggleView.display());
}

void toggle(OverviewGrid& grid, const ScreenRef& screen) {
  if (grid.isVisible()) {
    grid.closeAnimated();
  } else {
    grid.show(screen);
  }
}

}  // namespace tessaspaces::HotKeySet
