#include "platform/x11/PictureBatch.h"

#include <xcb/xcbext.h>

#include <memory>
#include <utility>

#include "platform/x11/PictureScaler.h"

namespace tessaspaces {

PictureBatch::~PictureBatch() {
  for (const auto& slot : slots_) {
    if (sent_ && !slot.answered) xcb_discard_reply(link_.channel().get(), slot.sequence);
  }
}

void PictureBatch::add(const PictureSource& source, ImageSize size) {
  auto& slot = slots_.emplace_back();
  slot.source = source;
  slot.size = size;
  slot.offset = bytes_;
  bytes_ += static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * sizeof(std::uint32_t);
}

void PictureBatch::send() {
  auto& channel = link_.channel();
  sent_ = true;
  shared_ = memory_.reserve(bytes_);
  for (auto& slot : slots_) {
    const auto picture = scaleDown(link_, slot.source, slot.size);
    const auto width = static_cast<std::uint16_t>(slot.size.width);
    const auto height = static_cast<std::uint16_t>(slot.size.height);
    constexpr std::int16_t origin = 0;
    constexpr std::uint32_t allPlanes = 0xffffffff;
    constexpr std::uint8_t format = XCB_IMAGE_FORMAT_Z_PIXMAP;
    slot.sequence =
        shared_ ? channel
                      .send<xcb_shm_get_image>(picture, origin, origin, width, height, allPlanes, format,
                                               memory_.segment(), static_cast<std::uint32_t>(slot.offset))
                      .sequence
                : channel.send<xcb_get_image>(format, picture, origin, origin, width, height, allPlanes).sequence;
    channel.send<xcb_free_pixmap>(picture);
  }
  channel.flush();
}

bool PictureBatch::arrived() {
  auto& channel = link_.channel();
  for (auto& slot : slots_) {
    if (slot.answered) continue;
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (xcb_poll_for_reply(channel.get(), slot.sequence, &reply, &error) == 0) return channel.broken();
    slot.answered = true;
    slot.reply.reset(reply);
    if (error != nullptr) handleError(*ErrorRef(error), channel.extensions());
  }
  return true;
}

std::vector<ImageRef> PictureBatch::receive() {
  std::vector<ImageRef> pictures;
  pictures.reserve(slots_.size());
  for (auto& slot : slots_) pictures.push_back(take(slot));
  return pictures;
}

ImageRef PictureBatch::take(Slot& slot) {
  auto& channel = link_.channel();
  if (!std::exchange(slot.answered, true)) {
    if (shared_) {
      slot.reply.reset(channel.await<xcb_shm_get_image_reply>(xcb_shm_get_image_cookie_t{slot.sequence}).release());
    } else {
      slot.reply.reset(channel.await<xcb_get_image_reply>(xcb_get_image_cookie_t{slot.sequence}).release());
    }
  }
  if (!slot.reply) return nullptr;
  const auto count = static_cast<std::size_t>(slot.size.width) * static_cast<std::size_t>(slot.size.height);
  const std::uint32_t* pixels = nullptr;
  if (shared_) {
    pixels = memory_.pixels() + slot.offset / sizeof(std::uint32_t);
  } else {
    const auto* reply = static_cast<const xcb_get_image_reply_t*>(slot.reply.get());
    if (static_cast<std::size_t>(xcb_get_image_data_length(reply)) < count * sizeof(std::uint32_t)) return nullptr;
    pixels = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply));
  }
  auto image = std::make_shared<Image>();
  image->width = slot.size.width;
  image->height = slot.size.height;
  image->pixels.assign(pixels, pixels + count);
  if (slot.source.opaque || slot.source.depth != 32) {
    for (auto& pixel : image->pixels) pixel |= 0xFF000000;
  }
  slot.reply.reset();
  return image;
}

}  // namespace tessaspaces
