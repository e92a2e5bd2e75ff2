#include "platform/x11/SharedSegment.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace tessaspaces {
namespace {

// Batches vary in size; asking for a little more at once spares the next one a new segment.
constexpr std::size_t leastBytes = std::size_t{4} << 20U;

}  // namespace

bool SharedSegment::reserve(std::size_t bytes) {
  if (!link_.sharesMemory()) return false;
  if (bytes <= size_) return true;
  release();
  const std::size_t wanted = std::max(bytes, leastBytes);
  const int descriptor = memfd_create("tessaspaces-previews", MFD_CLOEXEC);
  if (descriptor < 0) return false;
  void* memory = MAP_FAILED;
  if (ftruncate(descriptor, static_cast<off_t>(wanted)) == 0) {
    memory = mmap(nullptr, wanted, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  }
  if (memory == MAP_FAILED) {
    close(descriptor);
    return false;
  }
  auto& channel = link_.channel();
  const auto segment = xcb_generate_id(channel.get());
  const bool writable = false;
  const auto cookie = xcb_shm_attach_fd_checked(channel.get(), segment, descriptor, writable);  // closes it
  if (!proven_ && channel.check(cookie) != nullptr) {
    munmap(memory, wanted);
    link_.doNotShareMemory();
    return false;
  }
  if (proven_) xcb_discard_reply(channel.get(), cookie.sequence);
  proven_ = true;
  segment_ = segment;
  memory_ = memory;
  size_ = wanted;
  return true;
}

void SharedSegment::release() {
  if (memory_ == nullptr) return;
  link_.channel().send<xcb_shm_detach>(segment_);
  munmap(memory_, size_);
  segment_ = XCB_NONE;
  memory_ = nullptr;
  size_ = 0;
}

}  // namespace tessaspaces
