#include "platform/x11/X11Preferences.h"

#include <algorithm>
#include <sstream>

#include "platform/x11/PointerDevices.h"
#include "platform/x11/Text.h"
#include "platform/x11/XSettings.h"

namespace tessaspaces {
namespace {

// "sr_RS@latin" keeps its script, which tells the translations apart.
std::string tagOf(std::string locale) {
  std::string modifier;
  if (const auto at = locale.find('@'); at != std::string::npos) modifier = locale.substr(at + 1);
  locale = locale.substr(0, locale.find_first_of(".@"));
  if (locale == "C" || locale == "POSIX") return {};
  std::replace(locale.begin(), locale.end(), '_', '-');
  const std::string script = modifier == "latin" ? "-Latn" : modifier == "cyrillic" ? "-Cyrl" : "";
  const auto region = std::min(locale.find('-'), locale.size());
  return locale.substr(0, region) + script + locale.substr(region);
}

}  // namespace

std::optional<PreferenceValue> X11Preferences::legacyValue(std::string_view /*key*/) {
  return std::nullopt;
}

std::vector<std::string> X11Preferences::preferredLanguages() {
  return languagesFrom(environment);
}

bool X11Preferences::naturalScrolling() {
  return scrollsNaturally(connection_);
}

bool X11Preferences::reduceMotion() {
  return XSettings::read(connection_).number("Gtk/EnableAnimations") == 0;
}

std::vector<std::string> languagesFrom(const std::function<std::optional<std::string>(const char*)>& variable) {
  std::string locale;
  for (const auto* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (const auto value = variable(name)) {
      locale = *value;
      break;
    }
  }
  std::vector<std::string> tags;
  const auto add = [&](const std::string& name) {
    auto tag = tagOf(name);
    if (!tag.empty() && std::find(tags.begin(), tags.end(), tag) == tags.end()) tags.push_back(std::move(tag));
  };
  if (tagOf(locale).empty()) return tags;
  std::istringstream list(variable("LANGUAGE").value_or(""));
  for (std::string name; std::getline(list, name, ':');) add(name);
  add(locale);
  return tags;
}

}  // namespace tessaspaces
