#include <array>
#include <fstream>
#include <string>
#include <vector>

#include "fuzz/Fuzz.h"
#include "settings/L10n.h"

// The texts of translators. One input is a format, and, after a first zero byte, an argument.

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessaspaces;
  using fuzz::require;
  const auto text = fuzz::asText(data, size);
  const auto zero = text.find('\0');
  const auto format = text.substr(0, zero);
  const auto argument = zero != std::string_view::npos ? text.substr(zero + 1) : std::string_view("%@ %1$@ %%");

  // Nothing is ever lost but per cent signs that were doubled.
  const auto bare = L10n::format(format, {});
  require(bare.size() <= format.size(), "a text grew without an argument");
  if (format.find("%%") == std::string_view::npos) require(bare == format, "a text changed without an argument");

  std::string escaped;
  for (const char c : text) escaped.append(c == '%' ? 2 : 1, c);
  require(L10n::format(escaped, {L10n::Argument(argument)}) == text, "escaped per cent signs do not come back");

  // An argument is shown as it is: conversions in it are none of the format's.
  const auto once = L10n::format("[%@]", {L10n::Argument(argument)});
  require(once == "[" + std::string(argument) + "]", "an argument was read as a format");
  const auto shown = L10n::format(format, {L10n::Argument(argument), L10n::Argument(-7)});
  require(shown.size() <= format.size() * (argument.size() + 2) + argument.size(), "more than one each");

  for (const auto& offer : {L10n::bestMatch({std::string(text)}, {"en", "cs", "de"})}) {
    require(offer.empty() || text.size() >= offer.size(), "a language that was not asked for");
  }
  return 0;
}
