#include "settings/SettingsTable.h"

#include <array>
#include <cstdint>
#include <limits>

#include "base/KeyCombo.h"
#include "settings/Enums.h"
#include "settings/Notifications.h"
#include "settings/Settings.h"

namespace tessaspaces::SettingsTable {
namespace {

constexpr long long maxLong = std::numeric_limits<long long>::max();
constexpr long long maxUnsigned = std::numeric_limits<std::uint32_t>::max();

constexpr std::uint32_t comboModifiers = KeyCombo::option | KeyCombo::shift;
constexpr long long spaceKey = 49;
constexpr long long gKey = 5;

constexpr Entry boolean(Setting setting, std::string_view key, bool defaultValue, std::string_view description) {
  return {
      .setting = setting, .key = key, .kind = Kind::boolean, .defaultValue = defaultValue, .description = description};
}

template <SettingEnum E>
constexpr Entry choice(Setting setting, std::string_view key, E defaultValue, std::string_view description) {
  return {.setting = setting,
          .key = key,
          .kind = Kind::choice,
          .defaultValue = rawValue(defaultValue),
          .maximum = static_cast<long long>(caseNames<E>.size()) - 1,
          .names = caseNames<E>,
          .description = description};
}

constexpr Entry number(Setting setting, std::string_view key, Default defaultValue, std::string_view description) {
  return {.setting = setting,
          .key = key,
          .kind = Kind::integer,
          .defaultValue = defaultValue,
          .maximum = maxLong,
          .description = description};
}

constexpr Entry keyCode(Setting setting, std::string_view key, long long defaultValue, std::string_view description) {
  return {.setting = setting,
          .key = key,
          .kind = Kind::keyCode,
          .defaultValue = defaultValue,
          .maximum = maxUnsigned,
          .description = description};
}

constexpr Entry modifiers(Setting setting, std::string_view key, long long defaultValue, std::string_view description) {
  return {.setting = setting,
          .key = key,
          .kind = Kind::modifiers,
          .defaultValue = defaultValue,
          .maximum = maxUnsigned,
          .description = description};
}

constexpr Entry text(Setting setting, std::string_view key, Default defaultValue, std::string_view description) {
  return {.setting = setting, .key = key, .kind = Kind::text, .defaultValue = defaultValue, .description = description};
}

/// Without a default where the side of all displays stands in.
constexpr Entry gridSide(Setting setting, std::string_view key, Default defaultValue, std::string_view description) {
  return {.setting = setting,
          .key = key,
          .kind = Kind::integer,
          .defaultValue = defaultValue,
          .minimum = 1,
          .maximum = Settings::maxGridSide,
          .clamps = true,
          .notification = Notifications::qualityChanged,
          .description = description};
}

constexpr Entry assignment(Setting setting, std::string_view key, std::string_view description) {
  return {.setting = setting,
          .key = key,
          .kind = Kind::assignment,
          .minimum = 1,
          .maximum = maxLong,
          .description = description};
}

constexpr Entry imported(Entry entry, std::string_view notification = {}) {
  entry.import = Import::yes;
  if (!notification.empty()) entry.notification = notification;
  return entry;
}

constexpr Entry perItem(Entry entry, std::string_view item) {
  entry.item = item;
  return entry;
}

constexpr Default none{};

constexpr auto hotkeys = Notifications::hotkeysChanged;

constexpr std::array table{
    imported(choice(Setting::imageQuality, "tessaspaces.imageQuality", ImageQuality::medium,
                    "How finely windows are drawn in the overview"),
             Notifications::qualityChanged),
    imported(choice(Setting::language, "tessaspaces.language", AppLanguage::system,
                    "The language of all texts; system follows the session's"),
             Notifications::languageChanged),
    imported(boolean(Setting::hideMenuBarIcon, "tessaspaces.hideMenuBarIcon", false,
                     "Hide the icon in the menu bar; starting the program again brings it back"),
             Notifications::menuBarVisibilityChanged),
    imported(choice(Setting::logLevel, "tessaspaces.logLevel", LogLevel::error, "The least important lines to log")),
    imported(
        gridSide(Setting::gridRows, "tessaspaces.grid.rows", 3LL, "Rows of the grid on displays without their own")),
    imported(gridSide(Setting::gridColumns, "tessaspaces.grid.columns", 4LL,
                      "Columns of the grid on displays without their own")),
    imported(choice(Setting::transitionStyle, "tessaspaces.transition.style", TransitionStyle::slide,
                    "What is shown while desktops are switched")),
    imported(choice(Setting::transitionSpeed, "tessaspaces.transition.speed", AnimationSpeed::veryFast,
                    "How fast desktops are switched")),
    imported(boolean(Setting::miniGrid, "tessaspaces.transition.miniGrid", true,
                     "Show a small grid with the position while desktops are switched")),
    imported(boolean(Setting::gridZoom, "tessaspaces.transition.gridZoom", true,
                     "Zoom out of and into desktops when the overview opens and closes")),
    imported(choice(Setting::gridZoomSpeed, "tessaspaces.transition.gridZoomSpeed", AnimationSpeed::normal,
                    "How fast the overview zooms")),
    imported(keyCode(Setting::overviewKeyCode, "tessaspaces.hotkey.overview.keyCode", spaceKey,
                     "Key code of the hot key that opens and closes the overview"),
             hotkeys),
    imported(modifiers(Setting::overviewModifiers, "tessaspaces.hotkey.overview.modifiers", comboModifiers,
                       "Modifiers of the hot key that opens and closes the overview"),
             hotkeys),
    imported(keyCode(Setting::explodeKeyCode, "tessaspaces.hotkey.explode.keyCode", gKey,
                     "Key code of the hot key that switches the overview between its two views"),
             hotkeys),
    imported(modifiers(Setting::explodeModifiers, "tessaspaces.hotkey.explode.modifiers", comboModifiers,
                       "Modifiers of the hot key that switches the overview between its two views"),
             hotkeys),
    imported(boolean(Setting::gridOpensExploded, "tessaspaces.grid.opensExploded", false,
                     "Open the overview in its exploded view, windows side by side")),
    imported(boolean(Setting::circulationEnabled, "tessaspaces.circulation.enabled", true,
                     "Go on at the other end at the left and right edges of the grid")),
    imported(boolean(Setting::circulationVertical, "tessaspaces.circulation.vertical", false,
                     "Go on at the other end at the top and bottom edges too")),
    imported(choice(Setting::circulationJoin, "tessaspaces.circulation.join", CirculationJoin::nextRow,
                    "Where the end of a row leads: to the next row, or back to the start of the same one")),
    imported(modifiers(Setting::hotkeyChangeSpace, "tessaspaces.hotkey.0", defaultModifiers(HotkeyGroup::changeSpace),
                       "Modifiers that switch to the neighboring desktop, with the arrow keys"),
             hotkeys),
    imported(modifiers(Setting::hotkeyMoveWindow, "tessaspaces.hotkey.1", defaultModifiers(HotkeyGroup::moveWindow),
                       "Modifiers that move the window to the neighboring desktop, with the arrow keys"),
             hotkeys),
    imported(modifiers(Setting::hotkeyChangeSpaceDirect, "tessaspaces.hotkey.2",
                       defaultModifiers(HotkeyGroup::changeSpaceDirect),
                       "Modifiers that switch to a desktop by its number, with the digit keys"),
             hotkeys),
    imported(choice(Setting::hotCornerTopLeft, "tessaspaces.hotCorner.0", HotCornerAction::none,
                    "What happens when the pointer enters the top left corner")),
    imported(choice(Setting::hotCornerTopRight, "tessaspaces.hotCorner.1", HotCornerAction::none,
                    "What happens when the pointer enters the top right corner")),
    imported(choice(Setting::hotCornerBottomLeft, "tessaspaces.hotCorner.2", HotCornerAction::none,
                    "What happens when the pointer enters the bottom left corner")),
    imported(choice(Setting::hotCornerBottomRight, "tessaspaces.hotCorner.3", HotCornerAction::none,
                    "What happens when the pointer enters the bottom right corner")),
    perItem(gridSide(Setting::displayGridRows, "tessaspaces.grid.rows.", none, "Rows of the grid on one display"),
            "display identifier"),
    perItem(
        gridSide(Setting::displayGridColumns, "tessaspaces.grid.columns.", none, "Columns of the grid on one display"),
        "display identifier"),
    perItem(text(Setting::desktopNickname, "tessaspaces.desktopNickname.", none, "The user's own name for a desktop"),
            "desktop identifier"),
    perItem(assignment(Setting::appAssignment, "tessaspaces.app.",
                       "The desktop that an application's windows go to when it is launched"),
            "application identifier"),
    boolean(Setting::diagnosticsEnabled, "tessaspaces.diagnosticsEnabled", false,
            "Send a diagnostics report from time to time"),
    number(Setting::nextDiagnosticsSend, "tessaspaces.nextDiagnosticsSend", none,
           "When the next report is due, in seconds since 1970"),
    number(Setting::diagnosticsSentOffset, "tessaspaces.diagnosticsSentOffset", 0LL,
           "How much of the log has been reported, in bytes"),
    text(Setting::diagnosticsInstallID, "tessaspaces.diagnosticsInstallID", none,
         "What tells this installation's reports from others; generated at first use"),
    text(Setting::diagnosticsVersionHistory, "tessaspaces.diagnosticsVersionHistory", std::string_view(),
         "The versions that have run here"),
    text(Setting::acceptedClashes, "tessaspaces.launch.acceptedClashes", std::string_view(),
         "Hot keys that another program has and that the user has left so"),
};

constexpr bool isInOrder() {
  for (std::size_t at = 0; at < table.size(); ++at) {
    if (table[at].setting != static_cast<Setting>(at)) return false;
  }
  return table.back().setting == Setting::acceptedClashes;
}
static_assert(isInOrder(), "the table lists every setting once, in the order of the enumeration");

}  // namespace

std::span<const Entry> entries() {
  return table;
}

const Entry& entry(Setting setting) {
  return table[static_cast<std::size_t>(setting)];
}

const Entry* find(std::string_view key) {
  for (const auto& entry : table) {
    if (entry.isPerItem() ? key.starts_with(entry.key) && key.size() > entry.key.size() : key == entry.key) {
      return &entry;
    }
  }
  return nullptr;
}

}  // namespace tessaspaces::SettingsTable
