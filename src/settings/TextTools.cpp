#include "settings/TextTools.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <random>

namespace tessaspaces {
namespace {

// Every character that Unicode calls a space or a line end, and the tab.
constexpr std::array<std::string_view, 25> whiteSpace{
    "\t",     "\n",     "\v",     "\f",     "\r",     " ",      "\u0085", "\u00A0", "\u1680",
    "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",
    "\u2009", "\u200A", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000"};

}  // namespace

std::string_view trimmedWhiteSpace(std::string_view text) {
  for (bool again = true; again;) {
    again = false;
    for (const auto space : whiteSpace) {
      while (text.starts_with(space)) {
        text.remove_prefix(space.size());
        again = true;
      }
      while (text.ends_with(space)) {
        text.remove_suffix(space.size());
        again = true;
      }
    }
  }
  return text;
}

std::string randomUUID() {
  std::random_device source;
  std::array<std::uint32_t, 4> random{};
  for (auto& word : random) word = source();
  // Version 4, variant 1.
  random[1] = (random[1] & 0xFFFF0FFF) | 0x4000;
  random[2] = (random[2] & 0x3FFFFFFF) | 0x80000000;
  return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:04X}{:08X}", random[0], random[1] >> 16, random[1] & 0xFFFF,
                     random[2] >> 16, random[2] & 0xFFFF, random[3]);
}

}  // namespace tessaspaces
