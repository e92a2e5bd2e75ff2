#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace tessaspaces {

/// What the SkyLight layer asks of the system's dynamic loader. Any thread, several at a time. The images of a process
/// are counted from 0 in the order in which they were loaded; one may go between two questions, so an index below
/// `imageCount` can still have nothing to tell.
class DynamicLoader {
 public:
  virtual ~DynamicLoader() = default;

  /// Loads the library and binds all its symbols at once; null when that fails. It stays loaded for good.
  virtual void* open(const char* path) = 0;
  /// What went wrong in the last `open` of this thread that failed, as the loader says it.
  virtual std::string lastError() = 0;
  /// Address of an exported symbol of a library that `open` returned; null when it has none of that name.
  virtual void* symbol(void* library, const char* name) = 0;

  virtual std::uint32_t imageCount() = 0;
  virtual std::optional<std::string> imagePath(std::uint32_t index) = 0;
  /// Address of the Mach-O header; never 0 when there is one.
  virtual std::optional<std::uintptr_t> imageHeader(std::uint32_t index) = 0;
  /// What to add, modulo 2^64, to an address that the linker gave out to get one of this process.
  virtual std::uintptr_t imageSlide(std::uint32_t index) = 0;

  /// The readable memory that starts at the address and runs on without a gap, at most `size` bytes of it; empty when
  /// not even the first byte can be read. Both arguments may be any nonsense that an image holds. The memory belongs
  /// to an image and stays as it is while that image is loaded.
  virtual std::span<const std::byte> mapped(std::uintptr_t address, std::size_t size) = 0;
};

}  // namespace tessaspaces
