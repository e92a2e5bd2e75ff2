#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace tessaspaces {

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};
/// A reply of the X server; null when the request failed.
template <class T>
using Reply = std::unique_ptr<T, FreeDeleter>;
using ErrorRef = std::unique_ptr<xcb_generic_error_t, FreeDeleter>;
using EventRef = std::unique_ptr<xcb_generic_event_t, FreeDeleter>;

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XcbConnectionRef = std::unique_ptr<xcb_connection_t, Disconnect>;

/// The kind of an event without the mark of events that other clients sent.
inline std::uint8_t eventType(const xcb_generic_event_t& event) {
  return event.response_type & 0x7f;
}

/// Another client made the event up; only what the server itself says has to be true.
inline bool isSynthetic(const xcb_generic_event_t& event) {
  return (event.response_type & 0x80) != 0;
}

/// The event as its own type; the caller has looked at eventType.
template <class T>
const T& eventAs(const xcb_generic_event_t& event) {
  return reinterpret_cast<const T&>(event);
}

}  // namespace tessaspaces
