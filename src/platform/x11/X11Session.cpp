#include "platform/x11/X11Session.h"

#include <string_view>

#include "platform/x11/Text.h"

namespace tessaspaces {
namespace {

bool isXwayland(Channel& channel, Screens& screens) {
  // Servers from before the extension tell by the names of their outputs.
  for (const auto& screen : screens.screens()) {
    if (screen->name.starts_with("XWAYLAND")) return true;
  }
  constexpr std::string_view extension = "XWAYLAND";
  const auto cookie = channel.send<xcb_query_extension>(static_cast<std::uint16_t>(extension.size()), extension.data());
  const auto reply = channel.await<xcb_query_extension_reply>(cookie);
  return reply && reply->present != 0;
}

}  // namespace

std::vector<SessionFinding> examineX11Session(Connection& connection, WindowServer& server, Screens& screens) {
  const auto manager = server.windowManagerName();
  // A Wayland compositor shows its X clients a server of their own, with their windows and keys alone.
  const auto wayland = environment("WAYLAND_DISPLAY");
  const bool xwayland = isXwayland(connection.requests(), screens);
  const bool xtest = connection.extensions().xtest != 0;
  const bool composite = connection.extensions().composite != 0;
  return {
      {SessionFact::windowManager, manager.has_value(), manager.value_or("")},
      {SessionFact::nativeSession, !wayland && !xwayland,
       wayland    ? *wayland
       : xwayland ? "Xwayland"
                  : ""},
      {SessionFact::inputSynthesis, xtest, "XTEST"},
      {SessionFact::windowPictures, composite, "Composite"},
  };
}

}  // namespace tessaspaces
