#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "settings/ConfigValue.h"

namespace tessaspaces {

/// The one list of all settings: accessors, import, command line and documentation are made from it.
namespace SettingsTable {

enum class Kind {
  boolean,
  integer,
  choice,     // stored as the position of its name in `names`
  modifiers,  // a mask of KeyCombo's bits
  keyCode,    // a key code as in KeyCombo
  text,
  assignment,  // a desktop's identifier (text) or number (integer)
};

/// The settings in the order of the table, which is the order of the import for those that it takes.
enum class Setting {
  imageQuality,
  language,
  hideMenuBarIcon,
  logLevel,
  gridRows,
  gridColumns,
  transitionStyle,
  transitionSpeed,
  miniGrid,
  gridZoom,
  gridZoomSpeed,
  overviewKeyCode,
  overviewModifiers,
  explodeKeyCode,
  explodeModifiers,
  gridOpensExploded,
  circulationEnabled,
  circulationVertical,
  circulationJoin,
  hotkeyChangeSpace,  // the groups in the order of HotkeyGroup
  hotkeyMoveWindow,
  hotkeyChangeSpaceDirect,
  hotCornerTopLeft,  // the corners in the order of HotCorner
  hotCornerTopRight,
  hotCornerBottomLeft,
  hotCornerBottomRight,
  displayGridRows,
  displayGridColumns,
  desktopNickname,
  appAssignment,
  diagnosticsEnabled,
  nextDiagnosticsSend,
  diagnosticsSentOffset,
  diagnosticsInstallID,
  diagnosticsVersionHistory,
  acceptedClashes,
};

/// Whether the import from the system's preferences takes the setting over.
enum class Import { no, yes };

using Default = std::variant<std::monostate, bool, long long, std::string_view>;

struct Entry {
  Setting setting{};
  /// The key; for a setting per item, what comes before the item's identifier.
  std::string_view key{};
  Kind kind = Kind::integer;
  /// What a missing value reads as; no value when there is no default.
  Default defaultValue{};
  /// Bounds of an integer, both inclusive. Stored values outside read as the nearest bound where `clamps`.
  long long minimum = 0;
  long long maximum = 0;
  bool clamps = false;
  /// The names of a choice's values.
  std::span<const std::string_view> names{};
  /// What the identifier after the key is, in English ("display UUID"); empty for a plain setting.
  std::string_view item{};
  Import import = Import::no;
  /// The notification that announces a change; empty when nothing needs rebuilding.
  std::string_view notification{};
  /// One line of English.
  std::string_view description{};

  [[nodiscard]] bool isPerItem() const { return !item.empty(); }
};

[[nodiscard]] std::span<const Entry> entries();
[[nodiscard]] const Entry& entry(Setting setting);

/// The entry of a complete key: a plain setting, or a setting per item with an identifier. Null when there
/// is none.
[[nodiscard]] const Entry* find(std::string_view key);

/// A value, or else what is wrong with the text, in a sentence for the user.
struct Parsed {
  std::optional<ConfigValue> value;
  std::string error;
};
/// Reads what a person types: true, false, yes, no, on, off; numbers; names of choices whatever their case;
/// modifiers as a number, "none", or like "control+option".
[[nodiscard]] Parsed parse(const Entry& entry, std::string_view text);

/// The reverse: what a stored value means, in the form that `parse` reads. A value of the wrong kind or an
/// unknown choice is written plainly.
[[nodiscard]] std::string format(const Entry& entry, const ConfigValue& value);
/// The default in the same form; empty when there is none.
[[nodiscard]] std::string formatDefault(const Entry& entry);
/// What may be stored, for people: "1 to 16", "slide, fade, zoom, none".
[[nodiscard]] std::string describeValues(const Entry& entry);

/// The whole table as a page of documentation in Markdown.
[[nodiscard]] std::string markdown();

}  // namespace SettingsTable
}  // namespace tessaspaces
