#include "platform/x11/PagerLayout.h"

#include <array>
#include <cstdint>

namespace tessaspaces {
namespace {
// The values that the protocol gives orientation and starting corner.
constexpr std::uint32_t horizontal = 0;
constexpr std::uint32_t topLeft = 0;
}  // namespace

void PagerLayout::advertise(int rows, int columns) {
  if (rows <= 0 || columns <= 0) {
    release();
    return;
  }
  if (!owning_ && !acquire()) return;
  auto& channel = connection_.events();
  // As many rows as the desktops take, which may be more or fewer than the overview shows: the protocol has 0 for
  // that, and calls a layout with too little room broken.
  constexpr std::uint32_t computed = 0;
  const std::array<std::uint32_t, 4> layout{horizontal, static_cast<std::uint32_t>(columns), computed, topLeft};
  channel.send<xcb_change_property>(std::uint8_t{XCB_PROP_MODE_REPLACE}, connection_.root(),
                                    connection_.atoms().netDesktopLayout, xcb_atom_t{XCB_ATOM_CARDINAL},
                                    std::uint8_t{32}, static_cast<std::uint32_t>(layout.size()), layout.data());
  pump_.flush();
}

bool PagerLayout::acquire() {
  auto& channel = connection_.events();
  const auto selection = connection_.atoms().netDesktopLayoutSelection;
  const auto own = connection_.ownWindow();
  const auto owner = [&] {
    const auto reply = channel.await<xcb_get_selection_owner_reply>(channel.send<xcb_get_selection_owner>(selection));
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
  };
  const auto before = owner();
  if (before == XCB_NONE) {
    const auto time = connection_.timestamp();
    channel.send<xcb_set_selection_owner>(own, selection, time);
    owning_ = owner() == own;
    if (owning_) {
      // The convention of manager selections (ICCCM 2.8): tell everyone that there is a new owner.
      connection_.sendToRoot(connection_.root(), connection_.atoms().manager, {time, selection, own},
                             XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    }
  }
  pump_.drainLater();
  return owning_;
}

void PagerLayout::release() {
  if (!owning_) return;
  owning_ = false;
  auto& channel = connection_.events();
  channel.send<xcb_delete_property>(connection_.root(), connection_.atoms().netDesktopLayout);
  channel.send<xcb_set_selection_owner>(xcb_window_t{XCB_NONE}, connection_.atoms().netDesktopLayoutSelection,
                                        connection_.timestamp());
  // A server that finds the connection closed drops what it has not read yet: wait until it has.
  channel.await<xcb_get_input_focus_reply>(channel.send<xcb_get_input_focus>());
  pump_.drainLater();
}

void PagerLayout::handle(const xcb_generic_event_t& event) {
  if (eventType(event) != XCB_SELECTION_CLEAR) return;
  const auto& clear = eventAs<xcb_selection_clear_event_t>(event);
  // Another pager took over; the layout is its own from now on.
  if (clear.selection == connection_.atoms().netDesktopLayoutSelection) owning_ = false;
}

}  // namespace tessaspaces
