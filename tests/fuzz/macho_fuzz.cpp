#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

#include "fuzz/Fuzz.h"
#include "platform/skylight/MachOImage.h"

// An image of a process, damaged in any way there is. It lies in a buffer of exactly its size, where a sanitizer sees
// each step outside, and is slid there from 0, so that its addresses are offsets and the walk gets far.

namespace {

using namespace tessaspaces;

constexpr std::string_view wanted = "_f";

class OneImage : public DynamicLoader {
 public:
  OneImage(const std::uint8_t* data, std::size_t size) : bytes_(new std::byte[size]), size_(size) {
    if (size > 0) std::memcpy(bytes_.get(), data, size);
  }

  [[nodiscard]] std::span<const std::byte> bytes() const { return {bytes_.get(), size_}; }
  [[nodiscard]] std::uintptr_t address() const { return reinterpret_cast<std::uintptr_t>(bytes_.get()); }

  void* open(const char* /*path*/) override { return nullptr; }
  std::string lastError() override { return ""; }
  void* symbol(void* /*library*/, const char* /*name*/) override { return nullptr; }
  std::uint32_t imageCount() override { return 1; }
  std::optional<std::string> imagePath(std::uint32_t /*index*/) override { return "/SkyLight"; }
  std::optional<std::uintptr_t> imageHeader(std::uint32_t /*index*/) override { return address(); }
  std::uintptr_t imageSlide(std::uint32_t /*index*/) override { return address(); }
  std::span<const std::byte> mapped(std::uintptr_t at, std::size_t size) override {
    const auto offset = at - address();
    if (offset >= size_) return {};
    return bytes().subspan(offset).first(std::min(size, size_ - offset));
  }

 private:
  std::unique_ptr<std::byte[]> bytes_;
  std::size_t size_;
};

template <typename Bytes>
bool contains(std::span<const std::byte> image, const Bytes& bytes) {
  const auto part = std::as_bytes(std::span(bytes));
  return std::search(image.begin(), image.end(), part.begin(), part.end()) != image.end();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  OneImage image(data, size);
  const auto found = localSymbol(image, wanted, "/SkyLight");
  if (!found) return 0;
  const std::uint64_t value[] = {*found - image.address()};
  fuzz::require(contains(image.bytes(), value), "a value from nowhere");
  fuzz::require(contains(image.bytes(), std::span(wanted.data(), wanted.size() + 1)), "a name from nowhere");
  return 0;
}
