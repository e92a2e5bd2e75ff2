#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Image.h"

namespace tessaspaces {

/// A running application that has windows.
struct ApplicationInfo {
  /// Negative where the system knows the application but not its process.
  std::int32_t pid = 0;
  /// For people; empty when the system gives none.
  std::string localizedName;
  /// On X11 the desktop file's id where one matches the window class, else the class in lower case.
  std::optional<std::string> bundleIdentifier;
};

/// The running applications. Any thread but for `activate`, which callers run on the main thread.
class Applications {
 public:
  virtual ~Applications() = default;
  virtual std::optional<ApplicationInfo> frontmost() = 0;
  virtual std::optional<ApplicationInfo> running(std::int32_t pid) = 0;
  virtual std::vector<ApplicationInfo> runningWithBundleIdentifier(std::string_view identifier) = 0;
  /// Null when there is none.
  virtual ImageRef icon(std::int32_t pid) = 0;
  /// Brings the application's frontmost window forward, which takes the user to that window's desktop.
  /// False when there is no such application; true says nothing about whether the system obeyed.
  virtual bool activate(std::int32_t pid) = 0;
};

}  // namespace tessaspaces
