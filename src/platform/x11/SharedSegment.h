#pragma once

#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>

#include "platform/x11/CaptureLink.h"

namespace tessaspaces {

/// Memory that the server writes pictures into. Main thread.
class SharedSegment {
 public:
  explicit SharedSegment(CaptureLink& link) : link_(link) {}
  ~SharedSegment() { release(); }
  SharedSegment(const SharedSegment&) = delete;
  SharedSegment& operator=(const SharedSegment&) = delete;

  /// Makes room for at least so many bytes; what was in it is lost. False where memory cannot be shared.
  bool reserve(std::size_t bytes);
  /// Gives the memory back until the next `reserve`.
  void release();

  [[nodiscard]] xcb_shm_seg_t segment() const { return segment_; }
  [[nodiscard]] const std::uint32_t* pixels() const { return static_cast<const std::uint32_t*>(memory_); }
  [[nodiscard]] std::size_t size() const { return size_; }

 private:
  CaptureLink& link_;
  bool proven_ = false;  // the server has taken one
  xcb_shm_seg_t segment_ = XCB_NONE;
  void* memory_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace tessaspaces
