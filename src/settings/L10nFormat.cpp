#include <charconv>
#include <optional>

#include "settings/L10n.h"

namespace tessaspaces::L10n {
namespace {

/// What follows a per cent sign.
struct Conversion {
  std::size_t length = 0;  // characters after the per cent sign
  bool literalPercent = false;
  std::optional<std::size_t> position;  // from 1; absent for "the next argument"
};

/// `rest` begins after the per cent sign. Absent when it is no conversion known here.
std::optional<Conversion> readConversion(std::string_view rest) {
  if (rest.starts_with('%')) return Conversion{1, true, std::nullopt};
  Conversion conversion;
  std::size_t at = 0;
  std::size_t position = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), position);
  if (error == std::errc::result_out_of_range) return std::nullopt;
  if (const auto digits = static_cast<std::size_t>(end - rest.data()); error == std::errc() && digits > 0) {
    if (position == 0 || !rest.substr(digits).starts_with('$')) return std::nullopt;
    conversion.position = position;
    at = digits + 1;
  }
  // Length modifiers are taken in, so that a translator who writes "%ld" is understood.
  while (at < rest.size() && (rest[at] == 'l' || rest[at] == 'q')) ++at;
  if (at >= rest.size() || std::string_view("@diu").find(rest[at]) == std::string_view::npos) return std::nullopt;
  conversion.length = at + 1;
  return conversion;
}

}  // namespace

std::string Argument::text() const {
  if (const auto* integer = std::get_if<long long>(&value_)) return std::to_string(*integer);
  return std::get<std::string>(value_);
}

std::string format(std::string_view format, const std::vector<Argument>& arguments) {
  std::string result;
  std::size_t next = 1;
  while (!format.empty()) {
    const auto percent = format.find('%');
    result += format.substr(0, percent);
    if (percent == std::string_view::npos) break;
    format.remove_prefix(percent + 1);

    const auto conversion = readConversion(format);
    if (!conversion) {
      result += '%';
      continue;
    }
    if (conversion->literalPercent) {
      result += '%';
    } else {
      const auto position = conversion->position ? *conversion->position : next++;
      if (position <= arguments.size()) {
        result += arguments[position - 1].text();
      } else {
        result += '%';
        result += format.substr(0, conversion->length);
      }
    }
    format.remove_prefix(conversion->length);
  }
  return result;
}

}  // namespace tessaspaces::L10n
