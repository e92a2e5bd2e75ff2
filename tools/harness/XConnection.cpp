#include "harness/XConnection.h"

#include <poll.h>

namespace tessaspaces::harness {

XConnection::XConnection(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
  if (xcb_connection_has_error(connection_) != 0) {
    xcb_disconnect(connection_);
    throw Failure("cannot connect to display " + display);
  }
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
}

xcb_atom_t XConnection::atom(std::string_view name) const {
  if (const auto known = atoms_.find(name); known != atoms_.end()) return known->second;
  const auto answer = reply(xcb_intern_atom_reply,
                            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()));
  const xcb_atom_t atom = answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
  atoms_.emplace(name, atom);
  return atom;
}

int XConnection::errorOf(xcb_void_cookie_t checked) const {
  const Owned<xcb_generic_error_t> error(xcb_request_check(connection_, checked));
  return error ? error->error_code : 0;
}

std::vector<std::uint32_t> XConnection::numbers(xcb_window_t window, std::string_view property) const {
  const auto answer = reply(xcb_get_property_reply, xcb_get_property(connection_, 0, window, atom(property),
                                                                     XCB_GET_PROPERTY_TYPE_ANY, 0, 65536));
  if (!answer || answer->format != 32) return {};
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get()));
  return {values, values + answer->value_len};
}

std::optional<std::uint32_t> XConnection::number(xcb_window_t window, std::string_view property) const {
  const auto all = numbers(window, property);
  return all.empty() ? std::nullopt : std::optional(all.front());
}

std::string XConnection::text(xcb_window_t window, std::string_view property) const {
  const auto answer = reply(xcb_get_property_reply, xcb_get_property(connection_, 0, window, atom(property),
                                                                     XCB_GET_PROPERTY_TYPE_ANY, 0, 65536));
  if (!answer || answer->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(answer.get())), answer->value_len};
}

void XConnection::setNumbers(xcb_window_t window, std::string_view property, std::string_view type,
                             const std::vector<std::uint32_t>& values) const {
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), 32,
                      static_cast<std::uint32_t>(values.size()), values.data());
}

void XConnection::setText(xcb_window_t window, std::string_view property, std::string_view type,
                          std::string_view value) const {
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), 8,
                      static_cast<std::uint32_t>(value.size()), value.data());
}

void XConnection::sendToRoot(xcb_window_t window, std::string_view type, const std::vector<std::uint32_t>& data) const {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = atom(type);
  for (std::size_t i = 0; i < data.size() && i < 5; ++i) event.data.data32[i] = data[i];
  xcb_send_event(connection_, 0, root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&event));
  flush();
}

void XConnection::roundTrip() const {
  reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection_));
}

bool XConnection::waitFor(const std::function<bool()>& holds, Milliseconds timeout) const {
  const Deadline deadline(timeout);
  while (!holds()) {
    if (!nextEvent(deadline)) return holds();
    // What arrived in the same moment is answered by one more look.
    while (Owned<xcb_generic_event_t>(xcb_poll_for_event(connection_))) {
    }
  }
  return true;
}

Owned<xcb_generic_event_t> XConnection::nextEvent(const Deadline& deadline) const {
  flush();
  for (;;) {
    Owned<xcb_generic_event_t> event(xcb_poll_for_event(connection_));
    if (event || deadline.passed() || xcb_connection_has_error(connection_) != 0) return event;
    pollfd ready{xcb_get_file_descriptor(connection_), POLLIN, 0};
    poll(&ready, 1, deadline.pollTimeout());
  }
}

}  // namespace tessaspaces::harness
