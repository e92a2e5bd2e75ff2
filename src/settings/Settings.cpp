#include "settings/Settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <set>

#include "base/Fatal.h"
#include "platform/Platform.h"
#include "settings/ConfigStore.h"
#include "settings/L10n.h"
#include "settings/Log.h"
#include "settings/Notifications.h"
#include "settings/SettingsTable.h"
#include "settings/TextTools.h"

namespace tessaspaces::Settings {
namespace {

using SettingsTable::entry;
using SettingsTable::Setting;

std::string_view key(Setting setting) {
  return entry(setting).key;
}

std::string itemKey(Setting setting, std::string_view item) {
  std::string result(key(setting));
  result += item;
  return result;
}

/// One of several settings in a row, as the hot corners are.
template <SettingEnum E>
Setting nth(Setting first, E item) {
  return static_cast<Setting>(static_cast<int>(first) + static_cast<int>(item));
}

bool readBoolean(Setting setting) {
  return ConfigStore::boolean(key(setting)).value_or(std::get<bool>(entry(setting).defaultValue));
}

template <SettingEnum E>
E readChoice(Setting setting) {
  if (const auto raw = ConfigStore::integer(key(setting))) {
    if (const auto value = fromRaw<E>(*raw)) return *value;
  }
  return static_cast<E>(std::get<long long>(entry(setting).defaultValue));
}

template <SettingEnum E>
void writeChoice(Setting setting, E value) {
  ConfigStore::set(key(setting), rawValue(value));
}

int readSide(Setting own, Setting shared, std::string_view displayUUID) {
  const auto& limits = entry(shared);
  auto value = ConfigStore::integer(itemKey(own, displayUUID));
  if (!value) value = ConfigStore::integer(key(shared));
  return static_cast<int>(
      std::clamp(value.value_or(std::get<long long>(limits.defaultValue)), limits.minimum, limits.maximum));
}

/// Empty when there is no main screen, or none with an identifier.
std::string mainDisplayUUID() {
  if (!hasPlatform()) return {};
  const auto screen = platform().screens().mainScreen();
  return screen ? screen->uuid.value_or("") : "";
}

std::uint32_t saturated(long long value) {
  return static_cast<std::uint32_t>(std::clamp(value, 0LL, static_cast<long long>(KeyCombo::noKeyCode)));
}

KeyCombo readCombo(Setting keyCode, Setting modifiers) {
  auto code = ConfigStore::integer(key(keyCode));
  auto mask = ConfigStore::integer(key(modifiers));
  if (!code || !mask) {
    code = std::get<long long>(entry(keyCode).defaultValue);
    mask = std::get<long long>(entry(modifiers).defaultValue);
  }
  return {saturated(*code), saturated(*mask)};
}

void writeCombo(Setting keyCode, Setting modifiers, KeyCombo combo) {
  ConfigStore::set(key(keyCode), combo.keyCode);
  ConfigStore::set(key(modifiers), combo.modifiers);
}

}  // namespace

int gridRows() {
  return gridRows(mainDisplayUUID());
}
int gridRows(std::string_view displayUUID) {
  return readSide(Setting::displayGridRows, Setting::gridRows, displayUUID);
}
void setGridRows(int rows) {
  setGridRows(rows, mainDisplayUUID());
}
void setGridRows(int rows, std::string_view displayUUID) {
  ConfigStore::set(itemKey(Setting::displayGridRows, displayUUID), rows);
}

int gridColumns() {
  return gridColumns(mainDisplayUUID());
}
int gridColumns(std::string_view displayUUID) {
  return readSide(Setting::displayGridColumns, Setting::gridColumns, displayUUID);
}
void setGridColumns(int columns) {
  setGridColumns(columns, mainDisplayUUID());
}
void setGridColumns(int columns, std::string_view displayUUID) {
  ConfigStore::set(itemKey(Setting::displayGridColumns, displayUUID), columns);
}

bool canSetGrid(int rows, int columns) {
  return rows >= 1 && rows <= maxGridSide && columns >= 1 && columns <= maxGridSide && rows * columns <= maxDesktops;
}

bool circulationEnabled() {
  return readBoolean(Setting::circulationEnabled);
}
void setCirculationEnabled(bool enabled) {
  ConfigStore::set(key(Setting::circulationEnabled), enabled);
}
bool circulateVertically() {
  return readBoolean(Setting::circulationVertical);
}
void setCirculateVertically(bool vertically) {
  ConfigStore::set(key(Setting::circulationVertical), vertically);
}
CirculationJoin circulationJoin() {
  return readChoice<CirculationJoin>(Setting::circulationJoin);
}
void setCirculationJoin(CirculationJoin join) {
  writeChoice(Setting::circulationJoin, join);
}

TransitionStyle transitionStyle() {
  return readChoice<TransitionStyle>(Setting::transitionStyle);
}
void setTransitionStyle(TransitionStyle style) {
  writeChoice(Setting::transitionStyle, style);
}
AnimationSpeed transitionSpeed() {
  return readChoice<AnimationSpeed>(Setting::transitionSpeed);
}
void setTransitionSpeed(AnimationSpeed speed) {
  writeChoice(Setting::transitionSpeed, speed);
}
bool showMiniGrid() {
  return readBoolean(Setting::miniGrid);
}
void setShowMiniGrid(bool show) {
  ConfigStore::set(key(Setting::miniGrid), show);
}
bool showGridZoomAnimation() {
  return readBoolean(Setting::gridZoom);
}
void setShowGridZoomAnimation(bool show) {
  ConfigStore::set(key(Setting::gridZoom), show);
}
AnimationSpeed gridZoomSpeed() {
  return readChoice<AnimationSpeed>(Setting::gridZoomSpeed);
}
void setGridZoomSpeed(AnimationSpeed speed) {
  writeChoice(Setting::gridZoomSpeed, speed);
}

std::uint32_t modifiers(HotkeyGroup group) {
  const auto groupKey = key(nth(Setting::hotkeyChangeSpace, group));
  const auto stored = ConfigStore::integer(groupKey);
  if (!stored) return defaultModifiers(group);
  if (*stored < 0 || *stored > std::numeric_limits<std::uint32_t>::max()) {
    fatal(fmt::format("the setting {} holds {}, which is no modifier mask", groupKey, *stored));
  }
  return static_cast<std::uint32_t>(*stored);
}
void setModifiers(std::uint32_t modifiers, HotkeyGroup group) {
  ConfigStore::set(key(nth(Setting::hotkeyChangeSpace, group)), modifiers);
}

KeyCombo overviewGridCombo() {
  return readCombo(Setting::overviewKeyCode, Setting::overviewModifiers);
}
void setOverviewGridCombo(KeyCombo combo) {
  writeCombo(Setting::overviewKeyCode, Setting::overviewModifiers, combo);
}
KeyCombo gridViewToggleCombo() {
  return readCombo(Setting::explodeKeyCode, Setting::explodeModifiers);
}
void setGridViewToggleCombo(KeyCombo combo) {
  writeCombo(Setting::explodeKeyCode, Setting::explodeModifiers, combo);
}

bool gridOpensExploded() {
  return readBoolean(Setting::gridOpensExploded);
}
void setGridOpensExploded(bool exploded) {
  ConfigStore::set(key(Setting::gridOpensExploded), exploded);
}
HotCornerAction hotCornerAction(HotCorner corner) {
  return readChoice<HotCornerAction>(nth(Setting::hotCornerTopLeft, corner));
}
void setHotCornerAction(HotCornerAction action, HotCorner corner) {
  writeChoice(nth(Setting::hotCornerTopLeft, corner), action);
}

std::optional<std::string> desktopNickname(std::string_view desktopIdentifier) {
  if (desktopIdentifier.empty()) return std::nullopt;
  auto name = ConfigStore::string(itemKey(Setting::desktopNickname, desktopIdentifier));
  return name && !name->empty() ? name : std::nullopt;
}
void setDesktopNickname(std::optional<std::string_view> name, std::string_view desktopIdentifier) {
  if (desktopIdentifier.empty()) return;
  const auto nicknameKey = itemKey(Setting::desktopNickname, desktopIdentifier);
  const auto trimmed = trimmedWhiteSpace(name.value_or(""));
  if (trimmed.empty()) {
    ConfigStore::remove(nicknameKey);
  } else {
    ConfigStore::set(nicknameKey, trimmed);
  }
}

std::optional<AppAssignment> appAssignment(std::string_view bundleIdentifier) {
  const auto assignmentKey = itemKey(Setting::appAssignment, bundleIdentifier);
  if (auto identifier = ConfigStore::string(assignmentKey); identifier && !identifier->empty()) {
    return DesktopIdentifier{std::move(*identifier)};
  }
  if (const auto number = ConfigStore::integer(assignmentKey)) return DesktopNumber{*number};
  return std::nullopt;
}
void setAppAssignment(std::optional<std::string_view> desktopIdentifier, std::string_view bundleIdentifier) {
  const auto assignmentKey = itemKey(Setting::appAssignment, bundleIdentifier);
  if (desktopIdentifier) {
    ConfigStore::set(assignmentKey, *desktopIdentifier);
  } else {
    ConfigStore::remove(assignmentKey);
  }
}

LogLevel logLevel() {
  return readChoice<LogLevel>(Setting::logLevel);
}
void setLogLevel(LogLevel level) {
  writeChoice(Setting::logLevel, level);
}
bool hideMenuBarIcon() {
  return readBoolean(Setting::hideMenuBarIcon);
}
void setHideMenuBarIcon(bool hide) {
  ConfigStore::set(key(Setting::hideMenuBarIcon), hide);
}
AppLanguage language() {
  return readChoice<AppLanguage>(Setting::language);
}
void setLanguage(AppLanguage language) {
  writeChoice(Setting::language, language);
}
ImageQuality quality() {
  return readChoice<ImageQuality>(Setting::imageQuality);
}
void setQuality(ImageQuality quality) {
  writeChoice(Setting::imageQuality, quality);
}

bool diagnosticsEnabled() {
  return readBoolean(Setting::diagnosticsEnabled);
}
void setDiagnosticsEnabled(bool enabled) {
  ConfigStore::set(key(Setting::diagnosticsEnabled), enabled);
}

std::optional<std::chrono::sys_seconds> nextDiagnosticsSendDate() {
  const auto seconds = ConfigStore::integer(key(Setting::nextDiagnosticsSend));
  if (!seconds) return std::nullopt;
  return std::chrono::sys_seconds(std::chrono::seconds(*seconds));
}
void setNextDiagnosticsSendDate(std::optional<std::chrono::system_clock::time_point> date) {
  if (date) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(date->time_since_epoch());
    ConfigStore::set(key(Setting::nextDiagnosticsSend), seconds.count());
  } else {
    ConfigStore::remove(key(Setting::nextDiagnosticsSend));
  }
}

long long diagnosticsSentOffset() {
  const auto& offset = entry(Setting::diagnosticsSentOffset);
  return ConfigStore::integer(offset.key).value_or(std::get<long long>(offset.defaultValue));
}
void setDiagnosticsSentOffset(long long offset) {
  ConfigStore::set(key(Setting::diagnosticsSentOffset), offset);
}

std::string diagnosticsInstallID() {
  const auto idKey = key(Setting::diagnosticsInstallID);
  if (auto stored = ConfigStore::string(idKey); stored && !stored->empty()) return *stored;
  return ConfigStore::stringOrStore(idKey, randomUUID());
}
void setDiagnosticsInstallID(std::string_view identifier) {
  ConfigStore::set(key(Setting::diagnosticsInstallID), identifier);
}

std::string diagnosticsVersionHistory() {
  return ConfigStore::string(key(Setting::diagnosticsVersionHistory)).value_or("");
}
void setDiagnosticsVersionHistory(std::string_view history) {
  ConfigStore::set(key(Setting::diagnosticsVersionHistory), history);
}

std::string acceptedClashes() {
  return ConfigStore::string(key(Setting::acceptedClashes)).value_or("");
}
void setAcceptedClashes(std::string_view clashes) {
  ConfigStore::set(key(Setting::acceptedClashes), clashes);
}

bool launchAtLogin() {
  return hasPlatform() && platform().loginItem().isRegistered();
}
void setLaunchAtLogin(bool launch) {
  if (const auto error = platform().loginItem().setRegistered(launch)) {
    Log::error("LAUNCH AT LOGIN: change failed: {}", *error);
  }
}

std::vector<std::string> allKeys() {
  std::vector<std::string> keys;
  for (const auto& candidate : SettingsTable::entries()) {
    if (candidate.import == SettingsTable::Import::yes) keys.emplace_back(candidate.key);
  }
  return keys;
}

void announceChanges(std::span<const std::string> keys) {
  std::set<std::string_view> notifications;
  for (const auto& changed : keys) {
    if (const auto* found = SettingsTable::find(changed); found != nullptr && !found->notification.empty()) {
      notifications.insert(found->notification);
    }
  }
  for (const auto notification : notifications) {
    if (notification == Notifications::languageChanged) {
      L10n::reload();
    } else {
      Notifications::post(notification);
    }
  }
}

}  // namespace tessaspaces::Settings
