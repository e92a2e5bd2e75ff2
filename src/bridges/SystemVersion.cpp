#include "bridges/SystemVersion.h"

#include "platform/Platform.h"

namespace tessaspaces::Spaces {
namespace {

constexpr OperatingSystemVersion nativeVersion{27, 0};

}  // namespace

bool askYabaiFirst() {
  return platform().operatingSystemVersion() < nativeVersion;
}

bool movesWindowsNatively() {
  return platform().operatingSystemVersion() >= nativeVersion;
}

}  // namespace tessaspaces::Spaces
