#include "platform/x11/Activation.h"

#include "platform/x11/Properties.h"

namespace tessaspaces {
namespace {

constexpr std::uint32_t fromPager = 2;

}  // namespace

void activateWindow(Connection& connection, Reader& reader, xcb_window_t window) {
  // Asked for after the window manager's last focus change, or it takes this for an old request.
  const auto time = connection.askTime();
  // Some window managers bring the window to the user rather than the user to the window.
  const auto root = reader.root(RootDetail::desktops);
  const auto desktop = firstItem(connection.requests().await<xcb_get_property_reply>(
      askProperty(connection.requests(), window, connection.atoms().netWmDesktop, 1)));
  if (desktop && *desktop < root->desktopCount && root->current != desktop) {
    connection.sendToRoot(connection.root(), connection.atoms().netCurrentDesktop, {*desktop, time});
  }
  connection.sendToRoot(window, connection.atoms().netActiveWindow, {fromPager, time, 0});
}

}  // namespace tessaspaces
