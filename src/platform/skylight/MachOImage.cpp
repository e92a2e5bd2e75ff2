#include "platform/skylight/MachOImage.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <span>

namespace tessaspaces {
namespace {

static_assert(sizeof(std::uintptr_t) == 8 && sizeof(std::size_t) == 8, "addresses are those of 64-bit images");

using Bytes = std::span<const std::byte>;

// The parts of the 64-bit Mach-O format that the walk needs.
namespace header {
constexpr std::size_t size = 32;
constexpr std::size_t commandCount = 16;
}  // namespace header
namespace command {
constexpr std::size_t size = 8;  // of the part that all commands share
constexpr std::size_t length = 4;
constexpr std::uint32_t symbolTable = 0x2;
constexpr std::uint32_t segment64 = 0x19;
}  // namespace command
namespace segment {
constexpr std::size_t size = 72;
constexpr std::size_t name = 8;
constexpr std::size_t nameSize = 16;
constexpr std::size_t vmaddr = 24;
constexpr std::size_t fileoff = 40;
}  // namespace segment
namespace table {
constexpr std::size_t size = 24;
constexpr std::size_t symoff = 8;
constexpr std::size_t nsyms = 12;
constexpr std::size_t stroff = 16;
}  // namespace table
namespace entry {
constexpr std::size_t size = 16;
constexpr std::size_t value = 8;  // the string index stands at 0
}  // namespace entry

// How much is asked for as load commands; those of real images take a few thousand bytes. All of them are asked for at
// once because each question may cost a system call.
constexpr std::size_t mostCommandBytes = std::size_t{1} << 20;

/// Nothing in an image is sure to be aligned.
template <typename Number>
Number read(Bytes bytes, std::size_t offset) {
  Number number;
  std::memcpy(&number, bytes.data() + offset, sizeof number);
  return number;
}

std::string_view segmentName(Bytes segmentCommand) {
  const auto* text = reinterpret_cast<const char*>(segmentCommand.data() + segment::name);
  return {text, static_cast<std::size_t>(std::find(text, text + segment::nameSize, '\0') - text)};
}

struct LinkEdit {
  std::uint64_t vmaddr;
  std::uint64_t fileoff;
};

struct SymbolTable {
  std::uint32_t symoff;
  std::uint32_t nsyms;
  std::uint32_t stroff;
};

struct Commands {
  std::optional<LinkEdit> linkEdit;
  std::optional<SymbolTable> symbolTable;
};

/// Absent when a command is cut off, or shorter than its kind.
std::optional<Commands> readCommands(DynamicLoader& loader, std::uintptr_t address) {
  const auto start = loader.mapped(address, header::size);
  if (start.size() < header::size) return std::nullopt;
  const auto count = read<std::uint32_t>(start, header::commandCount);

  Commands found;
  auto rest = loader.mapped(address + header::size, mostCommandBytes);
  for (std::uint32_t index = 0; index < count; ++index) {
    if (rest.size() < command::size) return std::nullopt;
    const auto kind = read<std::uint32_t>(rest, 0);
    const auto length = read<std::uint32_t>(rest, command::length);
    if (length < command::size || length > rest.size()) return std::nullopt;
    const auto whole = rest.first(length);
    if (kind == command::segment64) {
      if (length < segment::size) return std::nullopt;
      if (segmentName(whole) == "__LINKEDIT") {
        found.linkEdit = {read<std::uint64_t>(whole, segment::vmaddr), read<std::uint64_t>(whole, segment::fileoff)};
      }
    } else if (kind == command::symbolTable) {
      if (length < table::size) return std::nullopt;
      found.symbolTable = {read<std::uint32_t>(whole, table::symoff), read<std::uint32_t>(whole, table::nsyms),
                           read<std::uint32_t>(whole, table::stroff)};
    }
    rest = rest.subspan(length);
  }
  return found;
}

/// Whether the text is at the index, with the zero byte that ends it.
bool holds(Bytes strings, std::uint32_t index, std::string_view text) {
  if (index >= strings.size() || strings.size() - index <= text.size()) return false;
  const auto string = strings.subspan(index);
  return std::memcmp(string.data(), text.data(), text.size()) == 0 && string[text.size()] == std::byte{0};
}

std::optional<std::uintptr_t> findSymbol(DynamicLoader& loader, std::uint32_t image, std::uintptr_t address,
                                         std::string_view name) {
  const auto slide = loader.imageSlide(image);
  const auto commands = readCommands(loader, address);
  if (!commands || !commands->linkEdit || !commands->symbolTable) return std::nullopt;
  const auto& where = *commands->symbolTable;
  const auto base = slide + commands->linkEdit->vmaddr - commands->linkEdit->fileoff;

  // The string table's size is not asked for: what can be read of it is what any index can reach.
  const auto farthest = std::numeric_limits<std::uint32_t>::max() + name.size() + 1;
  const auto strings = loader.mapped(base + where.stroff, farthest);
  auto entries = loader.mapped(base + where.symoff, std::size_t{where.nsyms} * entry::size);
  for (; entries.size() >= entry::size; entries = entries.subspan(entry::size)) {
    if (holds(strings, read<std::uint32_t>(entries, 0), name)) {
      return read<std::uint64_t>(entries, entry::value) + slide;
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::uintptr_t> localSymbol(DynamicLoader& loader, std::string_view name,
                                          std::string_view inImageEndingWith) {
  const auto count = loader.imageCount();
  for (std::uint32_t image = 0; image < count; ++image) {
    const auto path = loader.imagePath(image);
    if (!path || !std::string_view(*path).ends_with(inImageEndingWith)) continue;
    if (const auto address = loader.imageHeader(image)) return findSymbol(loader, image, *address, name);
  }
  return std::nullopt;
}

}  // namespace tessaspaces
