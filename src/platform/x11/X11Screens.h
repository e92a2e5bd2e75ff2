#pragma once

#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "platform/Screens.h"
#include "platform/x11/Connection.h"
#include "platform/x11/DesktopMap.h"
#include "platform/x11/EventPump.h"
#include "platform/x11/Monitors.h"
#include "platform/x11/Reader.h"

namespace tessaspaces {

/// The screens of one moment. Immutable.
struct ScreenLayout {
  std::vector<ScreenRef> screens;
  /// Parallel to `screens`.
  std::vector<PixelRect> areas;
  /// The monitors that show desktops: those that mirror no other.
  std::vector<MonitorArea> monitors;
  /// Parallel to `screens`, the index in `monitors` of the one whose desktops the screen shows.
  std::vector<std::size_t> monitorOf;

  /// Index in `monitors` of the display with this identifier.
  [[nodiscard]] std::optional<std::size_t> find(std::string_view identifier) const;
};
using ScreenLayoutRef = std::shared_ptr<const ScreenLayout>;

/// Monitors by RandR. Everything is in pixels of the root window, whose top left corner is the origin of
/// window bounds; frames are flipped about the first screen's height. A screen's name is its RandR name,
/// which is also Qt's. Read once, and again when events say that something changed.
class X11Screens : public Screens, public EventListener {
 public:
  X11Screens(Connection& connection, Reader& reader);

  std::vector<ScreenRef> screens() override;
  ScreenRef mainScreen() override;
  /// The pixel under the pointer, counted from the bottom: a pointer in the top row is inside its screen.
  Point pointer() override;
  /// While the main thread does what a key press has queued, the pointer counts as where the press found it: the
  /// display that the user meant, and no question to the server on the road from the key to the switch.
  void setPressPosition(std::optional<PixelPoint> position) { press_ = position; }

  /// Never null. Any thread.
  [[nodiscard]] ScreenLayoutRef layout() const;

  /// Asks for the events that announce changes; the screens are read anew with the first. Main thread.
  void start();
  void handle(const xcb_generic_event_t& event) override;
  void eventsDrained() override;

 private:
  [[nodiscard]] ScreenLayoutRef read() const;

  Connection& connection_;
  Reader& reader_;
  bool stale_ = false;               // main thread only
  std::optional<PixelPoint> press_;  // main thread only, which the scope of `keepRoot` tells
  mutable std::mutex mutex_;         // guards layout_
  ScreenLayoutRef layout_;
};

}  // namespace tessaspaces
