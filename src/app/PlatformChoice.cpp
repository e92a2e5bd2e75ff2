#include "app/PlatformChoice.h"

#include <cstdlib>
#include <string_view>
#include <utility>

#include "platform/simulated/SimulatedPlatform.h"
#ifdef TESSASPACES_HAS_X11
#include <xcb/xcb.h>

#include "platform/x11/X11Platform.h"
#endif

namespace tessaspaces {
namespace {

/// What --platform simulated shows.
constexpr std::string_view sampleWorld =
    "main 1920x1080 | Mail*[Inbox Calendar] Web[Browser] Code[Editor Terminal] Notes / "
    "Music[Player] Chat[Messages] Photos Files[Home]";

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

/// A connection to the display; null when it does not answer.
std::shared_ptr<void> probeDisplay() {
#ifdef TESSASPACES_HAS_X11
  if (environment("DISPLAY").empty()) return nullptr;
  std::shared_ptr<xcb_connection_t> connection(xcb_connect(nullptr, nullptr), &xcb_disconnect);
  if (xcb_connection_has_error(connection.get()) == 0) return connection;
#endif
  return nullptr;
}

std::string noDisplayMessage() {
#ifdef TESSASPACES_HAS_X11
  const std::string display = environment("DISPLAY");
  std::string message = display.empty() ? "there is no X display: DISPLAY is not set."
                                        : "the X display '" + display + "' does not answer.";
  if (!environment("WAYLAND_DISPLAY").empty()) {
    message += " In a Wayland session without X no program can see the keys and windows of others.";
  }
  return message + " Start the program from an X11 desktop session, or look at it with --platform simulated.";
#else
  return "this build knows no platform but --platform simulated.";
#endif
}

}  // namespace

std::optional<ChosenPlatform> choosePlatform(Options::PlatformChoice choice, std::string& error) {
  ChosenPlatform chosen;
  chosen.simulated = choice == Options::PlatformChoice::simulated;
  chosen.probe = probeDisplay();
  const bool userChose = !environment("QT_QPA_PLATFORM").empty();
  if (chosen.simulated) {
    if (!userChose && !chosen.probe) {
      chosen.qtPlugin = environment("WAYLAND_DISPLAY").empty() ? "offscreen" : "wayland;offscreen";
    }
    return chosen;
  }
  if (!chosen.probe) {
    error = noDisplayMessage();
    return std::nullopt;
  }
  // Also under a Wayland compositor: our windows belong to the X display that the desktops are on.
  if (!userChose) chosen.qtPlugin = "xcb";
  return chosen;
}

std::unique_ptr<Platform> openPlatform(const ChosenPlatform& chosen, std::unique_ptr<Dispatch> dispatch,
                                       [[maybe_unused]] std::function<void()> lost, std::string& error) {
  if (chosen.simulated) return SimulatedPlatform::fromText(sampleWorld, &error, std::move(dispatch));
#ifdef TESSASPACES_HAS_X11
  auto x11 = X11Platform::open(std::move(dispatch), &error);
  if (x11) x11->setConnectionLostHandler(std::move(lost));
  return x11;
#else
  error = noDisplayMessage();
  return nullptr;
#endif
}

}  // namespace tessaspaces
