#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "harness/Waiting.h"

namespace tessaspaces::harness {

struct Free {
  void operator()(void* pointer) const { std::free(pointer); }
};
template <typename T>
using Owned = std::unique_ptr<T, Free>;

/// In pixels, origin at the top left of the screen.
struct Rectangle {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  friend bool operator==(const Rectangle&, const Rectangle&) = default;
};

/// One connection to a server, for one thread. Errors that the server sends are dropped: a window can go at
/// any time, and whoever needs to know asks for the reply.
class XConnection {
 public:
  explicit XConnection(const std::string& display);
  ~XConnection() { xcb_disconnect(connection_); }
  XConnection(const XConnection&) = delete;
  XConnection& operator=(const XConnection&) = delete;

  [[nodiscard]] xcb_connection_t* get() const { return connection_; }
  [[nodiscard]] xcb_window_t root() const { return screen_->root; }
  [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
  [[nodiscard]] xcb_atom_t atom(std::string_view name) const;

  /// Waits for the reply to a request that was sent; null when the server answered with an error:
  /// `reply(xcb_get_geometry_reply, xcb_get_geometry(get(), window))`.
  template <typename Reply, typename Cookie>
  Owned<Reply> reply(Reply* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) const {
    xcb_generic_error_t* error = nullptr;
    Owned<Reply> result(fetch(connection_, cookie, &error));
    std::free(error);
    return result;
  }
  /// The error code of a checked request; 0 when it was carried out.
  [[nodiscard]] int errorOf(xcb_void_cookie_t checked) const;

  /// The 32-bit items of a property, up to 64 Ki of them; empty when it is not there.
  [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view property) const;
  [[nodiscard]] std::optional<std::uint32_t> number(xcb_window_t window, std::string_view property) const;
  [[nodiscard]] std::string text(xcb_window_t window, std::string_view property) const;
  void setNumbers(xcb_window_t window, std::string_view property, std::string_view type,
                  const std::vector<std::uint32_t>& values) const;
  void setText(xcb_window_t window, std::string_view property, std::string_view type, std::string_view value) const;
  /// Sends a window manager's client message about `window` to the root window, as a pager does.
  void sendToRoot(xcb_window_t window, std::string_view type, const std::vector<std::uint32_t>& data) const;

  void flush() const { xcb_flush(connection_); }
  /// Everything sent before has been carried out by the server when this returns.
  void roundTrip() const;
  /// Evaluates `holds` now and after every event that arrives, until it is true or the deadline passes.
  bool waitFor(const std::function<bool()>& holds, Milliseconds timeout = patience) const;
  /// Hands out the next event, waiting for one; null at the deadline.
  [[nodiscard]] Owned<xcb_generic_event_t> nextEvent(const Deadline& deadline) const;

 private:
  xcb_connection_t* connection_;
  const xcb_screen_t* screen_ = nullptr;
  mutable std::map<std::string, xcb_atom_t, std::less<>> atoms_;
};

}  // namespace tessaspaces::harness
