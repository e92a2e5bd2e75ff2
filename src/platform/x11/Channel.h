#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <type_traits>

#include "platform/x11/XErrors.h"
#include "platform/x11/Xcb.h"

namespace tessaspaces {

/// One connection to the X server, with its errors looked after and its round trips counted. The pattern
/// everywhere: `send` all requests of a step, then `await` their replies. Any thread.
class Channel {
 public:
  explicit Channel(XcbConnectionRef connection) : connection_(std::move(connection)) {}

  [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
  [[nodiscard]] bool broken() const { return xcb_connection_has_error(get()) != 0; }
  void flush() { xcb_flush(get()); }

  /// Sends `send<xcb_get_property>(arguments after the connection...)` and gives the cookie.
  template <auto request, class... Arguments>
  auto send(Arguments... arguments) {
    const auto cookie = request(get(), arguments...);
    lastSent_.store(cookie.sequence, std::memory_order_relaxed);
    return cookie;
  }

  /// Waits for a reply: `await<xcb_get_property_reply>(cookie)`. Null when the request failed.
  template <auto receive, class Cookie>
  auto await(Cookie cookie) {
    waiting(cookie.sequence);
    xcb_generic_error_t* error = nullptr;
    auto* raw = receive(get(), cookie, &error);
    finished(error, raw != nullptr);
    return Reply<std::remove_pointer_t<decltype(raw)>>(raw);
  }

  /// Waits for the outcome of a request sent as `..._checked`; null when it worked. The error is the
  /// caller's to judge.
  ErrorRef check(xcb_void_cookie_t cookie) {
    waiting(cookie.sequence);
    return ErrorRef(xcb_request_check(get(), cookie));
  }

  /// How often a thread has had to wait for the server: awaiting a reply whose request was sent after the
  /// last wait began counts one. Exact while one thread uses the channel.
  [[nodiscard]] std::uint64_t roundTrips() const { return roundTrips_.load(std::memory_order_relaxed); }

  /// Set before other threads use the channel.
  void setExtensions(const ExtensionCodes& extensions) { extensions_ = extensions; }
  [[nodiscard]] const ExtensionCodes& extensions() const { return extensions_; }
  /// Called once, on the thread that first meets the broken connection. Set before other threads use it.
  void setLostHandler(std::function<void()> handler) { lost_ = std::move(handler); }

  /// Notices a connection that broke outside `await`.
  void checkConnection();

 private:
  void waiting(std::uint32_t sequence);
  void finished(xcb_generic_error_t* error, bool replied);

  XcbConnectionRef connection_;
  ExtensionCodes extensions_;
  std::function<void()> lost_;
  std::atomic<bool> lostSeen_ = false;
  std::atomic<std::uint32_t> lastSent_ = 0;
  std::atomic<std::uint32_t> answered_ = 0;
  std::atomic<std::uint64_t> roundTrips_ = 0;
};

}  // namespace tessaspaces
