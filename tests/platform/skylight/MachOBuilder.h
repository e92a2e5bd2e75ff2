#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tessaspaces::fakes {

struct MachOSymbol {
  std::string name;
  std::uint64_t value;
};

/// Where the linker has put the "__LINKEDIT" segment.
struct LinkEditPlace {
  std::uint64_t vmaddr = 0;
  std::uint32_t fileoff = 0;
};

/// A 64-bit Mach-O image as far as a search for symbols looks at it, with nothing aligned from the second load command
/// on. The two parts may lie apart in memory, as those of a loaded image do.
struct MachO {
  /// Offsets in `start`, where a test puts other numbers.
  static constexpr std::size_t commandCount = 16;
  static constexpr std::size_t text = 32;
  static constexpr std::size_t odd = text + 72;
  static constexpr std::size_t linkEdit = odd + 13;
  static constexpr std::size_t table = linkEdit + 72;
  static constexpr std::size_t startSize = table + 24;

  std::vector<std::byte> start;    ///< the header and the load commands
  std::vector<std::byte> symbols;  ///< what lies in the segment: the symbol table, then the string table

  MachO(const std::vector<MachOSymbol>& of, LinkEditPlace place);
  /// Both parts, one after the other, as in an image that is linked at 0 and as long as it has to be.
  static std::vector<std::byte> inOnePiece(const std::vector<MachOSymbol>& of);
};

template <typename Number>
void put(std::vector<std::byte>& bytes, std::size_t offset, Number number) {
  for (std::size_t at = 0; at < sizeof number; ++at) bytes.at(offset + at) = std::byte(number >> (8 * at) & 0xff);
}

}  // namespace tessaspaces::fakes
