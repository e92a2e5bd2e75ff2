#pragma once

#include "platform/x11/Xcb.h"

namespace tessaspaces {

/// Waits for a reply on Qt's connection; null when the request failed, as it does when a window has gone:
/// `await(connection, xcb_get_geometry_reply, cookie)`.
template <class T, class Cookie>
Reply<T> await(xcb_connection_t* connection, T* (*receive)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
               Cookie cookie) {
  xcb_generic_error_t* error = nullptr;
  Reply<T> reply(receive(connection, cookie, &error));
  const ErrorRef dropped(error);
  return reply;
}

}  // namespace tessaspaces
