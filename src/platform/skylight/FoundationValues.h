#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace tessaspaces {

/// A CoreFoundation object of any type; each use says which.
using CFRef = const void*;

/// Makes the CoreFoundation values that SkyLight takes. Any thread.
class FoundationValues {
 public:
  virtual ~FoundationValues() = default;

  /// An array of integer numbers of 64 bits, which is also what window numbers are given as. Empty for no numbers; null
  /// when it cannot be made. The caller owns it.
  virtual CFRef numberArray(std::span<const std::uint64_t> numbers) = 0;
  /// A string; null when the text is not UTF-8. The caller owns it.
  virtual CFRef string(std::string_view utf8) = 0;
  virtual void release(CFRef value) = 0;
};

struct CFReleaser {
  FoundationValues* values;
  void operator()(CFRef value) const { values->release(value); }
};
/// Owns one reference to a value that FoundationValues or a SkyLight "copy" function gave out.
using OwnedCF = std::unique_ptr<const void, CFReleaser>;

}  // namespace tessaspaces
