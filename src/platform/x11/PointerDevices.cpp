#include "platform/x11/PointerDevices.h"

#include <xcb/xinput.h>

#include <optional>
#include <string_view>
#include <vector>

namespace tessaspaces {
namespace {

constexpr std::string_view naturalProperty = "libinput Natural Scrolling Enabled";
/// Only touchpads know taps.
constexpr std::string_view touchpadProperty = "libinput Tapping Enabled";

xcb_intern_atom_cookie_t askAtom(Channel& channel, std::string_view name) {
  constexpr std::uint8_t onlyIfExists = 1;
  return channel.send<xcb_intern_atom>(onlyIfExists, static_cast<std::uint16_t>(name.size()), name.data());
}

xcb_atom_t atomOf(Channel& channel, xcb_intern_atom_cookie_t cookie) {
  const auto reply = channel.await<xcb_intern_atom_reply>(cookie);
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_input_xi_get_property_cookie_t askProperty(Channel& channel, xcb_input_device_id_t device, xcb_atom_t property) {
  return channel.send<xcb_input_xi_get_property>(device, std::uint8_t{0}, property, xcb_atom_t{XCB_ATOM_ANY}, 0U, 1U);
}

/// The first byte; absent where the device has no such property.
std::optional<bool> flagOf(Channel& channel, xcb_input_xi_get_property_cookie_t cookie) {
  // The device may be gone by now, which is no error to speak of.
  const Reply<xcb_input_xi_get_property_reply_t> reply(xcb_input_xi_get_property_reply(channel.get(), cookie, nullptr));
  if (!reply || reply->format != 8 || reply->num_items == 0) return std::nullopt;
  return *static_cast<const std::uint8_t*>(xcb_input_xi_get_property_items(reply.get())) != 0;
}

struct Question {
  xcb_input_xi_get_property_cookie_t natural;
  std::optional<xcb_input_xi_get_property_cookie_t> touchpad;
};

}  // namespace

bool scrollsNaturally(Connection& connection) {
  auto& channel = connection.requests();
  const auto* extension = xcb_get_extension_data(channel.get(), &xcb_input_id);
  if (extension == nullptr || extension->present == 0) return false;
  const auto naturalCookie = askAtom(channel, naturalProperty);
  const auto touchpadCookie = askAtom(channel, touchpadProperty);
  const auto versionCookie = channel.send<xcb_input_xi_query_version>(std::uint16_t{2}, std::uint16_t{0});
  const auto devicesCookie = channel.send<xcb_input_xi_query_device>(xcb_input_device_id_t{XCB_INPUT_DEVICE_ALL});
  const auto natural = atomOf(channel, naturalCookie);
  const auto touchpad = atomOf(channel, touchpadCookie);
  channel.await<xcb_input_xi_query_version_reply>(versionCookie);
  const auto devices = channel.await<xcb_input_xi_query_device_reply>(devicesCookie);
  if (!devices || natural == XCB_ATOM_NONE) return false;

  std::vector<Question> questions;
  for (auto each = xcb_input_xi_query_device_infos_iterator(devices.get()); each.rem > 0;
       xcb_input_xi_device_info_next(&each)) {
    if (each.data->type != XCB_INPUT_DEVICE_TYPE_SLAVE_POINTER || each.data->enabled == 0) continue;
    auto& question = questions.emplace_back();
    question.natural = askProperty(channel, each.data->deviceid, natural);
    if (touchpad != XCB_ATOM_NONE) question.touchpad = askProperty(channel, each.data->deviceid, touchpad);
  }
  std::optional<bool> ofTouchpad;
  std::optional<bool> ofMouse;
  for (const auto& question : questions) {
    const auto flag = flagOf(channel, question.natural);
    const bool isTouchpad = question.touchpad && flagOf(channel, *question.touchpad);
    auto& kind = isTouchpad ? ofTouchpad : ofMouse;
    if (!kind) kind = flag;
  }
  return ofTouchpad.value_or(ofMouse.value_or(false));
}

}  // namespace tessaspaces
