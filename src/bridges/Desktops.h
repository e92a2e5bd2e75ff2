#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Geometry.h"
#include "base/Image.h"
#include "platform/Screens.h"
#include "platform/WindowServer.h"

namespace tessaspaces {

/// One ordinary application window.
struct SpaceWindow {
  WindowID id = 0;
  /// Empty when the window server gives none.
  std::string title;
  std::int32_t pid = 0;
  /// Global coordinates with the origin at the top left of the primary display, y downwards.
  Rect bounds;

  friend bool operator==(const SpaceWindow&, const SpaceWindow&) = default;
};

/// One user desktop of one display. Shared between a snapshot, the grid and the switching code, which
/// fill in the later fields in place.
class DesktopInfo {
 public:
  DesktopInfo(SpaceID space, std::string display) : spaceID(space), displayUUID(std::move(display)) {}

  const SpaceID spaceID;
  /// Identifier text of the display that the desktop belongs to.
  const std::string displayUUID;
  /// Persistent identity of the desktop; empty where the platform has none.
  std::string spaceUUID;
  /// The name that the window server gives it; may be empty.
  std::string name;
  ScreenRef screen;
  /// It is the one that its display shows.
  bool isCurrent = false;
  /// Front to back, as the window server lists them.
  std::vector<SpaceWindow> windows;
  /// The previews of the windows, entry for entry; null where there is none.
  std::vector<ImageRef> thumbs;
  /// The icons of the windows' applications, entry for entry; null where there is none.
  std::vector<ImageRef> icons;
  ImageRef wallpaper;
  /// The application that covers this desktop, when its display shows a full-screen space and this was
  /// the last ordinary desktop seen there.
  std::optional<std::string> frontmostFullscreenAppName;

  /// The key under which the user's nickname for the desktop is stored.
  [[nodiscard]] std::string nicknameKey() const;
  /// The name shown for the desktop when it stands at 0-based position `index` of its display.
  [[nodiscard]] std::string label(int index) const;
};
using DesktopRef = std::shared_ptr<DesktopInfo>;

/// The user's desktops at one moment: those of the first display in that display's order, then those of
/// the next. Grid positions always count within one display's desktops.
struct SpacesSnapshot {
  std::vector<DesktopRef> desktops;
};

}  // namespace tessaspaces
