#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/KeyCombo.h"
#include "settings/Enums.h"

namespace tessaspaces {

/// Where the windows of a newly launched application go: to the desktop with an identifier, or to the one
/// at a position (from 1) among the display's desktops.
struct DesktopIdentifier {
  std::string value;
  friend bool operator==(const DesktopIdentifier&, const DesktopIdentifier&) = default;
};
struct DesktopNumber {
  long long value = 0;
  friend bool operator==(const DesktopNumber&, const DesktopNumber&) = default;
};
using AppAssignment = std::variant<DesktopIdentifier, DesktopNumber>;

/// Every preference, typed. Nothing is cached: a read asks ConfigStore, a write goes straight to it. What is
/// missing, of another kind or unknown reads as the default. Setters only store; whoever changes a setting
/// posts the notification that belongs to it (or calls `announceChanges`). Keys, defaults and bounds stand
/// in SettingsTable. Any thread.
namespace Settings {

inline constexpr int maxDesktops = 16;
inline constexpr int maxGridSide = 16;

/// The shape of the grid on a display, else that for all displays; each side is 1 to 16. Without an argument:
/// of the main screen.
[[nodiscard]] int gridRows();
[[nodiscard]] int gridRows(std::string_view displayUUID);
void setGridRows(int rows);
void setGridRows(int rows, std::string_view displayUUID);
[[nodiscard]] int gridColumns();
[[nodiscard]] int gridColumns(std::string_view displayUUID);
void setGridColumns(int columns);
void setGridColumns(int columns, std::string_view displayUUID);
/// Whether both sides are in bounds and the grid has no more than `maxDesktops` tiles.
[[nodiscard]] bool canSetGrid(int rows, int columns);

[[nodiscard]] bool circulationEnabled();
void setCirculationEnabled(bool enabled);
[[nodiscard]] bool circulateVertically();
void setCirculateVertically(bool vertically);
[[nodiscard]] CirculationJoin circulationJoin();
void setCirculationJoin(CirculationJoin join);

[[nodiscard]] TransitionStyle transitionStyle();
void setTransitionStyle(TransitionStyle style);
[[nodiscard]] AnimationSpeed transitionSpeed();
void setTransitionSpeed(AnimationSpeed speed);
[[nodiscard]] bool showMiniGrid();
void setShowMiniGrid(bool show);
[[nodiscard]] bool showGridZoomAnimation();
void setShowGridZoomAnimation(bool show);
[[nodiscard]] AnimationSpeed gridZoomSpeed();
void setGridZoomSpeed(AnimationSpeed speed);

/// The modifier mask of a group of hot keys; 0 turns it off. A stored value that is no mask of 32 bits is a
/// fatal stop.
[[nodiscard]] std::uint32_t modifiers(HotkeyGroup group);
void setModifiers(std::uint32_t modifiers, HotkeyGroup group);
[[nodiscard]] KeyCombo overviewGridCombo();
void setOverviewGridCombo(KeyCombo combo);
[[nodiscard]] KeyCombo gridViewToggleCombo();
void setGridViewToggleCombo(KeyCombo combo);

/// The grid opens in its exploded view.
[[nodiscard]] bool gridOpensExploded();
void setGridOpensExploded(bool exploded);
[[nodiscard]] HotCornerAction hotCornerAction(HotCorner corner);
void setHotCornerAction(HotCornerAction action, HotCorner corner);

/// The user's own name for a desktop; never empty.
[[nodiscard]] std::optional<std::string> desktopNickname(std::string_view desktopIdentifier);
/// White space around the name is dropped; a name without anything else, or none, removes it. An empty
/// identifier is ignored.
void setDesktopNickname(std::optional<std::string_view> name, std::string_view desktopIdentifier);
[[nodiscard]] std::optional<AppAssignment> appAssignment(std::string_view bundleIdentifier);
/// Stores the desktop identifier; none removes the assignment.
void setAppAssignment(std::optional<std::string_view> desktopIdentifier, std::string_view bundleIdentifier);

[[nodiscard]] LogLevel logLevel();
void setLogLevel(LogLevel level);
[[nodiscard]] bool hideMenuBarIcon();
void setHideMenuBarIcon(bool hide);
[[nodiscard]] AppLanguage language();
void setLanguage(AppLanguage language);
[[nodiscard]] ImageQuality quality();
void setQuality(ImageQuality quality);

[[nodiscard]] bool diagnosticsEnabled();
void setDiagnosticsEnabled(bool enabled);
/// Whole seconds.
[[nodiscard]] std::optional<std::chrono::sys_seconds> nextDiagnosticsSendDate();
void setNextDiagnosticsSendDate(std::optional<std::chrono::system_clock::time_point> date);
[[nodiscard]] long long diagnosticsSentOffset();
void setDiagnosticsSentOffset(long long offset);
/// A UUID made and stored at the first call.
[[nodiscard]] std::string diagnosticsInstallID();
void setDiagnosticsInstallID(std::string_view identifier);
[[nodiscard]] std::string diagnosticsVersionHistory();
void setDiagnosticsVersionHistory(std::string_view history);

/// The hot keys that could not be had when the user last left them so; see HotKeyClashes.
[[nodiscard]] std::string acceptedClashes();
void setAcceptedClashes(std::string_view clashes);

/// Whether the system starts this program at login; kept by the system, not in the file. False without a
/// platform.
[[nodiscard]] bool launchAtLogin();
/// A failure is logged.
void setLaunchAtLogin(bool launch);

/// The keys that an import from the system's preferences takes over, in order.
[[nodiscard]] std::vector<std::string> allKeys();

/// Tells the program of changes to these keys that came from outside, as by ConfigStore::reloadIfChanged:
/// posts each notification that belongs to one of them once, and loads the language's texts again.
void announceChanges(std::span<const std::string> keys);

}  // namespace Settings
}  // namespace tessaspaces
