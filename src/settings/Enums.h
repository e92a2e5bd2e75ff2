#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/KeyCombo.h"
#include "settings/L10n.h"

namespace tessaspaces {

// The choices among the settings. Each is stored as its raw value, which is its position in the
// declaration, so cases are only ever added at the end.

/// How the rows of the grid are joined when a horizontal move wraps around.
enum class CirculationJoin : int { nextRow = 0, sameRow = 1 };
/// How finely windows are drawn in the overview.
enum class ImageQuality : int { low, medium, high };
enum class AppLanguage : int { system, english, czech, german, spanish, french };
enum class HotCorner : int { topLeft, topRight, bottomLeft, bottomRight };
enum class HotCornerAction : int { none, showGrid, toggleGridView };
/// The families of hot keys that share their modifiers.
enum class HotkeyGroup : int { changeSpace, moveWindow, changeSpaceDirect };
/// A line is written when its level is at most the configured one.
enum class LogLevel : int { error, warning, info, debug };
enum class TransitionStyle : int { slide, fade, zoom, none };
enum class AnimationSpeed : int { fastest, veryFast, faster, fast, normal, relaxed, slow, slower, verySlow, slowest };

/// The names of an enumeration's cases in the order of their raw values.
template <class E>
inline constexpr std::array<std::string_view, 0> caseNames{};
template <>
inline constexpr std::array<std::string_view, 2> caseNames<CirculationJoin>{"nextRow", "sameRow"};
template <>
inline constexpr std::array<std::string_view, 3> caseNames<ImageQuality>{"low", "medium", "high"};
template <>
inline constexpr std::array<std::string_view, 6> caseNames<AppLanguage>{"system", "english", "czech",
                                                                        "german", "spanish", "french"};
template <>
inline constexpr std::array<std::string_view, 4> caseNames<HotCorner>{"topLeft", "topRight", "bottomLeft",
                                                                      "bottomRight"};
template <>
inline constexpr std::array<std::string_view, 3> caseNames<HotCornerAction>{"none", "showGrid", "toggleGridView"};
template <>
inline constexpr std::array<std::string_view, 3> caseNames<HotkeyGroup>{"changeSpace", "moveWindow",
                                                                        "changeSpaceDirect"};
template <>
inline constexpr std::array<std::string_view, 4> caseNames<LogLevel>{"error", "warning", "info", "debug"};
template <>
inline constexpr std::array<std::string_view, 4> caseNames<TransitionStyle>{"slide", "fade", "zoom", "none"};
template <>
inline constexpr std::array<std::string_view, 10> caseNames<AnimationSpeed>{
    "fastest", "veryFast", "faster", "fast", "normal", "relaxed", "slow", "slower", "verySlow", "slowest"};

template <class E>
concept SettingEnum = (caseNames<E>.size() > 0);

template <SettingEnum E>
[[nodiscard]] constexpr long long rawValue(E value) {
  return static_cast<long long>(value);
}

/// The case with this raw value; absent when there is none.
template <SettingEnum E>
[[nodiscard]] constexpr std::optional<E> fromRaw(long long raw) {
  if (raw < 0 || raw >= static_cast<long long>(caseNames<E>.size())) return std::nullopt;
  return static_cast<E>(raw);
}

/// Every case, in the order of the raw values.
template <SettingEnum E>
[[nodiscard]] constexpr std::array<E, caseNames<E>.size()> allCases() {
  std::array<E, caseNames<E>.size()> cases{};
  for (std::size_t raw = 0; raw < cases.size(); ++raw) cases[raw] = static_cast<E>(raw);
  return cases;
}

// The key of the text that names a case to the user.
[[nodiscard]] std::string_view labelKey(CirculationJoin value);
[[nodiscard]] std::string_view labelKey(ImageQuality value);
[[nodiscard]] std::string_view labelKey(AppLanguage value);
[[nodiscard]] std::string_view labelKey(HotCorner value);
[[nodiscard]] std::string_view labelKey(HotCornerAction value);
[[nodiscard]] std::string_view labelKey(HotkeyGroup value);
[[nodiscard]] std::string_view labelKey(LogLevel value);
[[nodiscard]] std::string_view labelKey(TransitionStyle value);
/// The same for every speed: the text takes the seconds as its argument.
[[nodiscard]] std::string_view labelKey(AnimationSpeed value);

/// What the user reads for a case, in the user's language.
template <SettingEnum E>
[[nodiscard]] std::string label(E value) {
  return L10n::t(labelKey(value));
}
/// For instance "0.25 s", with the language's decimal separator.
template <>
[[nodiscard]] std::string label(AnimationSpeed value);

/// The key of the sentence that explains a style.
[[nodiscard]] std::string_view detailKey(TransitionStyle value);

/// "en", "cs", "de", "es", "fr"; absent for `system`.
[[nodiscard]] std::optional<std::string_view> code(AppLanguage language);

/// How long an animation takes, in seconds: 0.1 for the fastest, 1 for the slowest.
[[nodiscard]] double duration(AnimationSpeed speed);

/// The modifiers that a group has until the user chooses; 0 means that the group is off.
[[nodiscard]] constexpr std::uint32_t defaultModifiers(HotkeyGroup group) {
  return group == HotkeyGroup::moveWindow ? 0 : KeyCombo::control | KeyCombo::option;
}
/// The key of the text that names what the modifiers are combined with: the arrows or the digits.
[[nodiscard]] std::string_view suffixKey(HotkeyGroup group);

/// "ERROR", "WARNING", "INFO", "DEBUG".
[[nodiscard]] std::string_view tag(LogLevel level);

}  // namespace tessaspaces
