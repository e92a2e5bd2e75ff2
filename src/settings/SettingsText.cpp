#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

#include "base/KeyCombo.h"
#include "settings/SettingsTable.h"
#include "settings/TextTools.h"

// How settings are written for people: on the command line and in the documentation.

namespace tessaspaces::SettingsTable {
namespace {

struct Modifier {
  std::string_view name;
  long long mask;
};
// In the order in which combos are shown, then other names for the same keys.
constexpr std::array<Modifier, 8> modifierNames{{{"control", KeyCombo::control},
                                                 {"option", KeyCombo::option},
                                                 {"shift", KeyCombo::shift},
                                                 {"command", KeyCombo::command},
                                                 {"ctrl", KeyCombo::control},
                                                 {"alt", KeyCombo::option},
                                                 {"super", KeyCombo::command},
                                                 {"cmd", KeyCombo::command}}};
constexpr std::size_t properNames = 4;

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsIgnoringCase(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) return false;
  for (std::size_t at = 0; at < one.size(); ++at) {
    if (lower(one[at]) != lower(other[at])) return false;
  }
  return true;
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> words) {
  for (const auto word : words) {
    if (equalsIgnoringCase(text, word)) return true;
  }
  return false;
}

/// A whole number in decimal, or in hexadecimal after "0x".
std::optional<long long> readInteger(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x");
  if (hexadecimal) text.remove_prefix(2);
  long long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, hexadecimal ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<bool> readBoolean(std::string_view text) {
  if (isOneOf(text, {"true", "yes", "on", "1"})) return true;
  if (isOneOf(text, {"false", "no", "off", "0"})) return false;
  return std::nullopt;
}

std::optional<long long> readModifiers(std::string_view text) {
  if (isOneOf(text, {"none", "off"})) return 0;
  long long mask = 0;
  while (true) {
    const auto plus = text.find('+');
    bool known = false;
    for (const auto& modifier : modifierNames) {
      if (!equalsIgnoringCase(text.substr(0, plus), modifier.name)) continue;
      mask |= modifier.mask;
      known = true;
    }
    if (!known) return std::nullopt;
    if (plus == std::string_view::npos) return mask;
    text.remove_prefix(plus + 1);
  }
}

std::string modifierText(long long mask) {
  if (mask == 0) return "none";
  std::string text;
  for (std::size_t at = 0; at < properNames; ++at) {
    if ((mask & modifierNames[at].mask) == 0) continue;
    if (!text.empty()) text += '+';
    text += modifierNames[at].name;
    mask &= ~modifierNames[at].mask;
  }
  // Bits of no key: only the number says it all.
  return mask == 0 ? text : std::string();
}

std::string joined(std::span<const std::string_view> names) {
  std::string text;
  for (const auto name : names) {
    if (!text.empty()) text += ", ";
    text += name;
  }
  return text;
}

Parsed wrong(const Entry& entry, std::string_view text) {
  return {std::nullopt, fmt::format("“{}” is no value for {}; it takes {}", text, entry.key, describeValues(entry))};
}

std::optional<long long> readNumber(const Entry& entry, std::string_view text) {
  if (entry.kind == Kind::choice) {
    for (std::size_t raw = 0; raw < entry.names.size(); ++raw) {
      if (equalsIgnoringCase(text, entry.names[raw])) return static_cast<long long>(raw);
    }
  }
  if (entry.kind == Kind::modifiers) {
    if (const auto mask = readModifiers(text)) return mask;
  }
  const auto number = readInteger(text);
  // A mask of bits that are no modifiers would take bare keys away from everybody.
  if (number && entry.kind == Kind::modifiers && (*number & ~static_cast<long long>(KeyCombo::allModifiers)) != 0) {
    return std::nullopt;
  }
  return number && *number >= entry.minimum && *number <= entry.maximum ? number : std::nullopt;
}

std::string cell(std::string_view text) {
  return text.empty() ? "–" : fmt::format("`{}`", text);
}

}  // namespace

Parsed parse(const Entry& entry, std::string_view text) {
  switch (entry.kind) {
    case Kind::boolean:
      if (const auto value = readBoolean(text)) return {ConfigValue(*value), {}};
      break;
    case Kind::integer:
    case Kind::choice:
    case Kind::modifiers:
    case Kind::keyCode:
      if (const auto value = readNumber(entry, text)) return {ConfigValue(*value), {}};
      break;
    case Kind::assignment:
      if (const auto number = readInteger(text)) {
        if (*number < entry.minimum) break;
        return {ConfigValue(*number), {}};
      }
      if (text.empty()) break;
      return {ConfigValue(std::string(text)), {}};
    case Kind::text:
      if (entry.setting == Setting::desktopNickname) text = trimmedWhiteSpace(text);
      if (entry.setting == Setting::desktopNickname && text.empty()) break;
      return {ConfigValue(std::string(text)), {}};
  }
  return wrong(entry, text);
}

std::string format(const Entry& entry, const ConfigValue& value) {
  if (const auto* boolean = std::get_if<bool>(&value)) return *boolean ? "true" : "false";
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* number = std::get_if<double>(&value)) return fmt::format("{}", *number);
  const auto integer = std::get<long long>(value);
  if (entry.kind == Kind::choice && integer >= 0 && std::cmp_less(integer, entry.names.size())) {
    return std::string(entry.names[static_cast<std::size_t>(integer)]);
  }
  if (entry.kind == Kind::modifiers) {
    if (auto text = modifierText(integer); !text.empty()) return text;
  }
  return fmt::format("{}", integer);
}

std::string formatDefault(const Entry& entry) {
  if (const auto* boolean = std::get_if<bool>(&entry.defaultValue)) return format(entry, ConfigValue(*boolean));
  if (const auto* integer = std::get_if<long long>(&entry.defaultValue)) return format(entry, ConfigValue(*integer));
  if (const auto* text = std::get_if<std::string_view>(&entry.defaultValue)) return std::string(*text);
  return {};
}

std::string describeValues(const Entry& entry) {
  switch (entry.kind) {
    case Kind::boolean: return "true or false";
    case Kind::choice: return joined(entry.names);
    case Kind::modifiers: return "none, or control, option, shift, command joined by +";
    case Kind::keyCode: return "a key code";
    case Kind::text: return entry.setting == Setting::desktopNickname ? "a text that is not blank" : "a text";
    case Kind::assignment: return "a number from 1, or an identifier";
    case Kind::integer: break;
  }
  if (entry.maximum == std::numeric_limits<long long>::max()) return fmt::format("a number from {}", entry.minimum);
  return fmt::format("{} to {}", entry.minimum, entry.maximum);
}

std::string markdown() {
  std::string page =
      "# Settings\n\n"
      "All settings lie in `~/.config/tessaspaces/config.json`, one JSON object of the keys below. The program\n"
      "writes it, and notices changes that others make. Choices are stored as numbers, from 0 in the order in\n"
      "which their names stand here; modifiers as the sum of control 4096, option 2048, shift 512, command 256.\n\n"
      "| Key | Values | Default | Meaning |\n|---|---|---|---|\n";
  for (const auto& entry : entries()) {
    page += fmt::format("| `{}{}` | {} | {} | {} |\n", entry.key,
                        entry.isPerItem() ? fmt::format("<{}>", entry.item) : std::string(), describeValues(entry),
                        cell(formatDefault(entry)), entry.description);
  }
  return page;
}

}  // namespace tessaspaces::SettingsTable
