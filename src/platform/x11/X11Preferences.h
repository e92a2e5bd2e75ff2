#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Session.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

/// There is no preferences database to import from; languages come from the environment, the direction of scrolling
/// from the input devices, the wish for no animations from the settings that desktop environments tell all programs.
class X11Preferences : public Preferences {
 public:
  explicit X11Preferences(Connection& connection) : connection_(connection) {}

  std::optional<PreferenceValue> legacyValue(std::string_view key) override;
  std::vector<std::string> preferredLanguages() override;
  bool naturalScrolling() override;
  bool reduceMotion() override;

 private:
  Connection& connection_;
};

/// The languages that the locale variables ask for, as gettext reads them: LC_ALL, else LC_MESSAGES, else
/// LANG names the locale, and unless that is "C", LANGUAGE may list others to try first. "de_AT.UTF-8"
/// becomes "de-AT". `variable` gives a variable's value, absent when unset or empty.
[[nodiscard]] std::vector<std::string> languagesFrom(
    const std::function<std::optional<std::string>(const char*)>& variable);

}  // namespace tessaspaces
