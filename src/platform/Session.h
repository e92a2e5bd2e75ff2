#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessaspaces {

struct OperatingSystemVersion {
  int major = 0;
  int minor = 0;
  friend auto operator<=>(const OperatingSystemVersion&, const OperatingSystemVersion&) = default;
};

using PreferenceValue = std::variant<bool, long long, double, std::string>;

/// The system's own preferences. Any thread.
class Preferences {
 public:
  virtual ~Preferences() = default;
  /// A value that an older version of this program left in the system's preferences database; absent
  /// where there is none, and always on a system without such a database.
  virtual std::optional<PreferenceValue> legacyValue(std::string_view key) = 0;
  /// The user's languages as tags like "de-AT", most wanted first; may be empty.
  virtual std::vector<std::string> preferredLanguages() = 0;
  /// Whether content follows the fingers on a touchpad; swipes between desktops are turned round with it.
  virtual bool naturalScrolling() = 0;
  /// Whether the user wants no animations. Asks the system each time.
  virtual bool reduceMotion() = 0;
};

/// Starting this program when the user logs in. Any thread.
class LoginItem {
 public:
  virtual ~LoginItem() = default;
  virtual bool isRegistered() = 0;
  /// Registers or unregisters; the reason in words when that failed, absent when it worked.
  virtual std::optional<std::string> setRegistered(bool registered) = 0;
};

/// What the user must have allowed before the program can do its work. Any thread.
class Permissions {
 public:
  virtual ~Permissions() = default;
  /// Control of other applications' windows and input; on X11 the XTEST extension.
  virtual bool hasAccessibility() = 0;
  /// Pictures of other applications' windows; on X11 the Composite extension.
  virtual bool hasScreenRecording() = 0;
  /// Asks the user, opening the system's settings when wanted; does nothing where there is nothing to ask.
  virtual void request(bool openSettings) = 0;
};

/// One thing about the session that decides whether the program can work at all.
enum class SessionFact {
  windowManager,   // a window manager that understands desktops (EWMH on X11)
  nativeSession,   // a session whose global keys and windows are all visible from here
  inputSynthesis,  // XTEST on X11
  windowPictures,  // Composite on X11
};

struct SessionFinding {
  SessionFact fact = SessionFact::windowManager;
  bool ok = false;
  /// What was found, for the readiness screen: the window manager's name, the Wayland compositor's socket.
  std::string detail;
};

}  // namespace tessaspaces
