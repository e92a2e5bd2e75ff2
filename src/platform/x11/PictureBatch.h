#pragma once

#include <xcb/render.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/WindowCapture.h"
#include "platform/x11/Monitors.h"
#include "platform/x11/SharedSegment.h"

namespace tessaspaces {

/// What to take a picture of.
struct PictureSource {
  enum class Kind {
    pixmap,
    tile,   // a pixmap that repeats itself in all directions
    screen  // the root window with all windows in it
  };
  xcb_drawable_t drawable = XCB_NONE;
  std::uint8_t depth = 0;
  PixelRect area;
  Kind kind = Kind::pixmap;
  /// The alpha that the drawable holds, if any, means nothing.
  bool opaque = false;
};

/// Pictures scaled down on the server and fetched together: first all are asked for, then all are received, which
/// waits once. One batch at a time uses the memory. Main thread.
class PictureBatch {
 public:
  PictureBatch(CaptureLink& link, SharedSegment& memory) : link_(link), memory_(memory) {}
  ~PictureBatch();
  PictureBatch(const PictureBatch&) = delete;
  PictureBatch& operator=(const PictureBatch&) = delete;

  /// Before `send`.
  void add(const PictureSource& source, ImageSize size);
  [[nodiscard]] bool empty() const { return slots_.empty(); }
  /// Bytes that the pictures take.
  [[nodiscard]] std::size_t bytes() const { return bytes_; }
  /// Has the server begin. The pictures show the sources as they are now; what is asked of them later does not matter.
  void send();
  /// Whether `receive` would not wait.
  [[nodiscard]] bool arrived();
  /// In the order of the `add`s; null for a source that went before the server came to it.
  std::vector<ImageRef> receive();

 private:
  struct Slot {
    PictureSource source;
    ImageSize size;
    std::size_t offset = 0;  // in the memory
    unsigned int sequence = 0;
    bool answered = false;
    Reply<void> reply;
  };
  [[nodiscard]] ImageRef take(Slot& slot);

  CaptureLink& link_;
  SharedSegment& memory_;
  std::vector<Slot> slots_;
  std::size_t bytes_ = 0;
  bool sent_ = false;
  bool shared_ = false;
};

}  // namespace tessaspaces
