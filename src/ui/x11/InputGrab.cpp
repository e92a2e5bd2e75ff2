#include "ui/x11/InputGrab.h"

#include <cstdint>
#include <optional>

#include "ui/x11/Await.h"

namespace tessaspaces {
namespace {

constexpr std::uint16_t pointerEvents = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                        XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                                        XCB_EVENT_MASK_LEAVE_WINDOW;
}  // namespace

bool InputGrab::take(QWindow& window) {
  const auto id = static_cast<xcb_window_t>(window.winId());
  const bool first = holder_ == nullptr;
  // The keys to this window whichever one the input focus is on; the pointer to the panel that it is over.
  const auto keyboard =
      xcb_grab_keyboard(connection_, 0, id, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const auto pointer = xcb_grab_pointer(connection_, 1, id, pointerEvents, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                        XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
  std::optional<xcb_query_keymap_cookie_t> keymap;
  if (first) keymap = xcb_query_keymap(connection_);
  const auto gotKeyboard = await(connection_, xcb_grab_keyboard_reply, keyboard);
  const auto gotPointer = await(connection_, xcb_grab_pointer_reply, pointer);
  Reply<xcb_query_keymap_reply_t> down;
  if (keymap) down = await(connection_, xcb_query_keymap_reply, *keymap);

  if (gotKeyboard && gotPointer && gotKeyboard->status == XCB_GRAB_STATUS_SUCCESS &&
      gotPointer->status == XCB_GRAB_STATUS_SUCCESS) {
    holder_ = &window;
    grabbedAt_ = keyboard.sequence;
    if (down) {
      held_.begin(down->keys);
      lookedAt_ = keymap->sequence;
    }
    return true;
  }
  if (first || holder_ == &window) {
    holder_ = nullptr;
    release();
  } else {
    // What another panel has it keeps; one of the two may have gone over to this window.
    take(*holder_);
  }
  return false;
}

void InputGrab::giveBack(QWindow& window) {
  if (holder_ != &window) return;
  holder_ = nullptr;
  held_.end();
  release();
}

void InputGrab::release() {
  xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
  xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
  xcb_flush(connection_);
}

bool InputGrab::isSince(const xcb_generic_event_t& event, unsigned sequence) {
  return static_cast<std::int32_t>(event.full_sequence - sequence) >= 0;
}

InputGrab::Verdict InputGrab::judge(const xcb_generic_event_t& event) {
  if (holder_ == nullptr) return Verdict::pass;
  switch (eventType(event)) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE: {
      // A key that went down between the grab and the look at what is down belongs to the panel.
      if (!isSince(event, lookedAt_)) return Verdict::pass;
      const auto& key = eventAs<xcb_key_press_event_t>(event);
      const bool swallowed = eventType(event) == XCB_KEY_PRESS ? held_.swallowsPress(key.detail, key.time)
                                                               : held_.swallowsRelease(key.detail, key.time);
      return swallowed ? Verdict::swallow : Verdict::pass;
    }
    case XCB_FOCUS_OUT: {
      const auto& focus = eventAs<xcb_focus_out_event_t>(event);
      const bool ended = focus.mode == XCB_NOTIFY_MODE_UNGRAB && focus.event == holder_->winId();
      return ended && isSince(event, grabbedAt_) ? Verdict::broken : Verdict::pass;
    }
    default: return Verdict::pass;
  }
}

}  // namespace tessaspaces
