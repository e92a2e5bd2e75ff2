#include "platform/skylight/MachOBuilder.h"

#include <string_view>

namespace tessaspaces::fakes {
namespace {

void putText(std::vector<std::byte>& bytes, std::size_t offset, std::string_view text) {
  for (const char c : text) bytes.at(offset++) = std::byte(c);
}

void putSegment(std::vector<std::byte>& bytes, std::size_t offset, std::string_view name, LinkEditPlace place) {
  put(bytes, offset, std::uint32_t{0x19});
  put(bytes, offset + 4, std::uint32_t{72});
  putText(bytes, offset + 8, name);
  put(bytes, offset + 24, place.vmaddr);
  put(bytes, offset + 40, std::uint64_t{place.fileoff});
}

}  // namespace

MachO::MachO(const std::vector<MachOSymbol>& of, LinkEditPlace place) : start(startSize), symbols(16 * of.size() + 1) {
  put(start, 0, std::uint32_t{0xfeedfacf});
  put(start, commandCount, std::uint32_t{4});
  put(start, commandCount + 4, std::uint32_t{startSize - text});
  putSegment(start, text, "__TEXT", {});
  put(start, odd, std::uint32_t{0x80000001});  // a kind that nobody has thought of yet
  put(start, odd + 4, std::uint32_t{13});
  putSegment(start, linkEdit, "__LINKEDIT", place);

  // The string table starts with the empty string, as linkers have it.
  const auto stringsAt = 16 * of.size();
  for (std::size_t at = 0; at < of.size(); ++at) {
    put(symbols, 16 * at, static_cast<std::uint32_t>(symbols.size() - stringsAt));
    put(symbols, 16 * at + 8, of[at].value);
    const auto nameAt = symbols.size();
    symbols.resize(nameAt + of[at].name.size() + 1);
    putText(symbols, nameAt, of[at].name);
  }

  put(start, table, std::uint32_t{2});
  put(start, table + 4, std::uint32_t{24});
  put(start, table + 8, place.fileoff);
  put(start, table + 12, static_cast<std::uint32_t>(of.size()));
  put(start, table + 16, static_cast<std::uint32_t>(place.fileoff + stringsAt));
  put(start, table + 20, static_cast<std::uint32_t>(symbols.size() - stringsAt));
}

std::vector<std::byte> MachO::inOnePiece(const std::vector<MachOSymbol>& of) {
  MachO image(of, {startSize, startSize});
  image.start.insert(image.start.end(), image.symbols.begin(), image.symbols.end());
  return image.start;
}

}  // namespace tessaspaces::fakes
