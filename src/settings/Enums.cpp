#include "settings/Enums.h"

#include <fmt/format.h>

namespace tessaspaces {
namespace {

/// The element for a case; the first for a value that is no case, which only a cast can make.
template <class E, class T, std::size_t count>
T pick(const std::array<T, count>& values, E value) {
  static_assert(count == caseNames<E>.size());
  const auto raw = static_cast<std::size_t>(rawValue(value));
  return raw < count ? values[raw] : values[0];
}

template <std::size_t count>
using Keys = std::array<std::string_view, count>;

}  // namespace

std::string_view labelKey(CirculationJoin value) {
  return value == CirculationJoin::sameRow ? "settings.circulation.sameRow" : "settings.circulation.nextRow";
}

std::string_view labelKey(ImageQuality value) {
  return pick(Keys<3>{"quality.low", "quality.medium", "quality.high"}, value);
}

std::string_view labelKey(AppLanguage value) {
  return pick(Keys<6>{"settings.language.system", "settings.language.english", "settings.language.czech",
                      "settings.language.german", "settings.language.spanish", "settings.language.french"},
              value);
}

std::string_view labelKey(HotCorner value) {
  return pick(Keys<4>{"hotcorner.topLeft", "hotcorner.topRight", "hotcorner.bottomLeft", "hotcorner.bottomRight"},
              value);
}

std::string_view labelKey(HotCornerAction value) {
  return pick(Keys<3>{"hotcorner.action.none", "hotcorner.action.showGrid", "hotcorner.action.toggleGridView"}, value);
}

std::string_view labelKey(HotkeyGroup value) {
  return pick(Keys<3>{"hotkey.label.changeSpace", "hotkey.label.moveWindow", "hotkey.label.changeSpaceDirect"}, value);
}

std::string_view labelKey(LogLevel value) {
  return pick(Keys<4>{"settings.debug.logLevel.error", "settings.debug.logLevel.warning",
                      "settings.debug.logLevel.info", "settings.debug.logLevel.debug"},
              value);
}

std::string_view labelKey(TransitionStyle value) {
  return pick(Keys<4>{"transition.style.slide.label", "transition.style.fade.label", "transition.style.zoom.label",
                      "transition.style.none.label"},
              value);
}

std::string_view labelKey(AnimationSpeed) {
  return "transition.speed.seconds";
}

template <>
std::string label(AnimationSpeed value) {
  std::string seconds = fmt::format("{}", duration(value));
  if (const auto point = seconds.find('.'); point != std::string::npos) {
    seconds.replace(point, 1, L10n::t("format.decimalSeparator"));
  }
  return L10n::t(labelKey(value), seconds);
}

std::string_view detailKey(TransitionStyle value) {
  return pick(Keys<4>{"transition.style.slide.detail", "transition.style.fade.detail", "transition.style.zoom.detail",
                      "transition.style.none.detail"},
              value);
}

std::optional<std::string_view> code(AppLanguage language) {
  const auto code = pick(Keys<6>{"", "en", "cs", "de", "es", "fr"}, language);
  return code.empty() ? std::nullopt : std::optional(code);
}

double duration(AnimationSpeed speed) {
  // Finer steps at the fast end, where a twentieth of a second is felt.
  return pick(std::array<double, 10>{0.1, 0.15, 0.2, 0.25, 0.3, 0.4, 0.5, 0.65, 0.8, 1.0}, speed);
}

std::string_view suffixKey(HotkeyGroup group) {
  return group == HotkeyGroup::changeSpaceDirect ? "hotkey.suffix.changeSpaceDirect" : "hotkey.suffix.changeSpace";
}

std::string_view tag(LogLevel level) {
  return pick(Keys<4>{"ERROR", "WARNING", "INFO", "DEBUG"}, level);
}

}  // namespace tessaspaces
