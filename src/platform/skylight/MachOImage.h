#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/skylight/DynamicLoader.h"

namespace tessaspaces {

/// Address of a symbol that an image does not export, from the image's own symbol table. The image is the first one, in
/// the loader's order, that has a header and a path ending with the suffix; its first symbol of that name counts,
/// whatever kind of symbol it is. `name` is as the symbol table spells it and holds no zero byte.
///
/// Absent without such an image or symbol, and when the image is not laid out as a 64-bit Mach-O image should be. The
/// walk believes nothing that it reads: it looks at no byte that the loader does not call readable, and takes no longer
/// than the readable part of the image is large, so a damaged image costs an absent result and nothing worse.
std::optional<std::uintptr_t> localSymbol(DynamicLoader& loader, std::string_view name,
                                          std::string_view inImageEndingWith);

}  // namespace tessaspaces
