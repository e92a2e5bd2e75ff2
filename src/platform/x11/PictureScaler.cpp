#include "platform/x11/PictureScaler.h"

#include <array>
#include <cmath>
#include <string_view>

namespace tessaspaces {
namespace {

xcb_render_fixed_t fixed(double value) {
  return static_cast<xcb_render_fixed_t>(std::lround(value * 65536));
}

/// A picture to read from, and the pixmap under it where that is ours.
struct Stage {
  xcb_render_picture_t picture = XCB_NONE;
  xcb_pixmap_t pixmap = XCB_NONE;
  PixelRect area;
  xcb_render_pictformat_t format = XCB_NONE;
};

class Scaling {
 public:
  explicit Scaling(CaptureLink& link) : link_(link), channel_(link.channel()) {}

  Stage open(const PictureSource& source) {
    auto format = link_.formatOf(source.depth);
    if (source.depth == 32) format = link_.imageFormat();
    const std::array<std::uint32_t, 2> values{
        source.kind == PictureSource::Kind::tile ? XCB_RENDER_REPEAT_NORMAL : XCB_RENDER_REPEAT_PAD,
        source.kind == PictureSource::Kind::screen ? XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS
                                                   : XCB_SUBWINDOW_MODE_CLIP_BY_CHILDREN};
    return {createPicture(source.drawable, format, XCB_RENDER_CP_REPEAT | XCB_RENDER_CP_SUBWINDOW_MODE, values.data()),
            XCB_NONE, source.area, format};
  }

  /// A pixmap of its own that shows `from` at that size.
  Stage scale(const Stage& from, ImageSize size) {
    Stage to;
    to.pixmap = xcb_generate_id(channel_.get());
    to.area = {0, 0, size.width, size.height};
    // Between two formats alike the server is several times as fast.
    const bool opaque = from.format == link_.opaqueFormat();
    to.format = opaque ? link_.opaqueFormat() : link_.imageFormat();
    const std::uint8_t depth = opaque ? 24 : 32;
    const auto width = static_cast<std::uint16_t>(size.width);
    const auto height = static_cast<std::uint16_t>(size.height);
    channel_.send<xcb_create_pixmap>(depth, to.pixmap, link_.root(), width, height);
    const std::uint32_t repeat = XCB_RENDER_REPEAT_PAD;
    to.picture = createPicture(to.pixmap, to.format, XCB_RENDER_CP_REPEAT, &repeat);
    if (from.area.width != size.width || from.area.height != size.height) {
      constexpr std::string_view filter = "bilinear";
      channel_.send<xcb_render_set_picture_filter>(from.picture, static_cast<std::uint16_t>(filter.size()),
                                                   filter.data(), 0U, static_cast<const xcb_render_fixed_t*>(nullptr));
    }
    // From a place in the new picture to one in the old.
    xcb_render_transform_t transform{};
    transform.matrix11 = fixed(double(from.area.width) / size.width);
    transform.matrix13 = fixed(from.area.x);
    transform.matrix22 = fixed(double(from.area.height) / size.height);
    transform.matrix23 = fixed(from.area.y);
    transform.matrix33 = fixed(1);
    channel_.send<xcb_render_set_picture_transform>(from.picture, transform);
    constexpr std::int16_t origin = 0;
    channel_.send<xcb_render_composite>(std::uint8_t{XCB_RENDER_PICT_OP_SRC}, from.picture,
                                        xcb_render_picture_t{XCB_NONE}, to.picture, origin, origin, origin, origin,
                                        origin, origin, width, height);
    return to;
  }

  void close(const Stage& stage) {
    closePicture(stage);
    if (stage.pixmap != XCB_NONE) channel_.send<xcb_free_pixmap>(stage.pixmap);
  }
  void closePicture(const Stage& stage) { channel_.send<xcb_render_free_picture>(stage.picture); }

 private:
  xcb_render_picture_t createPicture(xcb_drawable_t drawable, xcb_render_pictformat_t format, std::uint32_t mask,
                                     const std::uint32_t* values) {
    const auto picture = xcb_generate_id(channel_.get());
    channel_.send<xcb_render_create_picture>(picture, drawable, format, mask, static_cast<const void*>(values));
    return picture;
  }

  CaptureLink& link_;
  Channel& channel_;
};

}  // namespace

xcb_pixmap_t scaleDown(CaptureLink& link, const PictureSource& source, ImageSize size) {
  Scaling scaling(link);
  auto stage = scaling.open(source);
  const auto step = [&](ImageSize to) {
    const auto next = scaling.scale(stage, to);
    scaling.close(stage);
    stage = next;
  };
  while (stage.area.width >= 2 * size.width && stage.area.height >= 2 * size.height &&
         (stage.area.width > 2 * size.width || stage.area.height > 2 * size.height)) {
    step({stage.area.width / 2, stage.area.height / 2});
  }
  step(size);
  scaling.closePicture(stage);
  return stage.pixmap;
}

}  // namespace tessaspaces
