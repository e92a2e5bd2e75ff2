#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace tessaspaces::contract {

/// A monitor as the hardware has it: pixels, origin at the top left of the first one.
struct Monitor {
  std::string name;
  int x = 0;
  int y = 0;
  int width = 1920;
  int height = 1080;
};

/// Another program's window.
struct ClientWindow {
  std::string title = "window";
  /// Where this is 0 the window does not tell; only X11 has such.
  std::int32_t pid = 5001;
  /// Counted from 0 among the first display's desktops.
  int desktop = 0;
  int x = 120;
  int y = 140;
  int width = 480;
  int height = 320;
};

/// The colours (0xRRGGBB) of a window's quarters: top left, top right, bottom left, bottom right.
using Quarters = std::array<std::uint32_t, 4>;

/// The world around a platform: the user, the hardware, other programs. Each call returns when the world has
/// done its part; what the platform makes of it may follow later. Every display has `desktopsPerDisplay`
/// desktops at first, and the first is shown.
class WorldDriver {
 public:
  virtual ~WorldDriver() = default;

  /// The platform under test.
  virtual Platform& platform() = 0;
  /// Serves the main thread until `holds`; false when it never does.
  virtual bool until(const std::function<bool()>& holds) = 0;
  /// Serves the main thread until all that was asked of the world before this call has had its effect.
  virtual void settle() = 0;

  virtual WindowID open(const ClientWindow& window) = 0;
  virtual void close(WindowID window) = 0;
  virtual void makeSticky(WindowID window) = 0;
  /// It covers its display, or does so no more.
  virtual void setFullScreen(WindowID window, bool full) = 0;
  /// The window looks like this from now on, whenever it is on screen.
  virtual void draw(WindowID window, const Quarters& colors) = 0;
  /// Another size for its inside, where windows do not tile. What it looks like is drawn anew.
  virtual void resize(WindowID window, int width, int height) = 0;
  /// The user clicks a window of the desktop that is shown.
  virtual void focus(WindowID window) = 0;
  /// The user goes to a desktop of the first display by the system's own means.
  virtual void showDesktop(int desktop) = 0;
  /// Where `fixedDesktops` does not hold.
  virtual void setDesktopCount(int count) = 0;
  /// Origin at the top left.
  virtual void movePointer(int x, int y) = 0;
  virtual void pressKey(KeyCombo combo) = 0;
  /// The same in two halves.
  virtual void holdKey(KeyCombo combo) = 0;
  virtual void letKeyGo(KeyCombo combo) = 0;
  /// Another program takes the key for itself, or gives it back.
  virtual void takeKey(KeyCombo combo) = 0;
  virtual void giveKeyBack(KeyCombo combo) = 0;
  /// Plugs and unplugs monitors so that these are there; the first is the primary one.
  virtual void setMonitors(const std::vector<Monitor>& monitors) = 0;
  virtual void setLanguages(const std::vector<std::string>& tags) = 0;
  /// The user wants animations, or none.
  virtual void setAnimations(bool wanted) = 0;
  virtual void stopWindowManager() = 0;

  // What this world is like.
  /// Desktops come and go by other means than a number.
  [[nodiscard]] virtual bool fixedDesktops() const = 0;
  /// All displays show the same desktop, out of one list.
  [[nodiscard]] virtual bool sharedDesktops() const = 0;
  /// Windows lie side by side: they take no size of their own and do not come to the front.
  [[nodiscard]] virtual bool tiles() const = 0;
};

inline constexpr int desktopsPerDisplay = 4;

/// One world to run the contract in.
struct Backend {
  std::string name;
  std::function<std::unique_ptr<WorldDriver>(const std::vector<Monitor>&)> make;

  friend void PrintTo(const Backend& backend, std::ostream* out) { *out << backend.name; }
};

}  // namespace tessaspaces::contract
