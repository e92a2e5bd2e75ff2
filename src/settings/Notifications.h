#pragma once

#include <functional>
#include <string_view>

#include "base/Signal.h"

namespace tessaspaces {

/// Announcements of changes by name, from whoever makes a change to whoever must rebuild something.
namespace Notifications {

inline constexpr std::string_view qualityChanged = "tessaspaces.qualityChanged";
inline constexpr std::string_view wallpaperStoreChanged = "tessaspaces.wallpaperStoreChanged";
inline constexpr std::string_view hotkeysChanged = "tessaspaces.hotkeysChanged";
inline constexpr std::string_view languageChanged = "tessaspaces.languageChanged";
inline constexpr std::string_view menuBarVisibilityChanged = "tessaspaces.menuBarVisibilityChanged";

/// Runs the observers on the main thread: before it returns when called there (or when there is no
/// platform yet), else soon. Any thread.
void post(std::string_view name);

/// Runs `observer` at every post of `name` until the connection is let go. Main thread, there too the
/// connection is let go.
[[nodiscard]] ScopedConnection observe(std::string_view name, std::function<void()> observer);

}  // namespace Notifications
}  // namespace tessaspaces
