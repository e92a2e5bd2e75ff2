#include "base/Fatal.h"

#include <cstdio>
#include <cstdlib>

namespace tessaspaces {

void fatal(std::string_view message) {
  std::fprintf(stderr, "tessaspaces: %.*s\n", static_cast<int>(message.size()), message.data());
  std::abort();
}

}  // namespace tessaspaces
