#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/Options.h"
#include "platform/Platform.h"

namespace tessaspaces {

/// Which platform the program runs on, found out before Qt starts: Qt ends the process when it cannot open
/// a display.
struct ChosenPlatform {
  bool simulated = false;
  /// Qt's own plugin for it; empty when the user has chosen one by QT_QPA_PLATFORM.
  std::string qtPlugin;
  /// The connection by which the display was found to answer. To be held until Qt has its own: a server
  /// that loses its last client starts afresh and answers nobody meanwhile.
  std::shared_ptr<void> probe;
};

/// Absent, with a message for the user in `error`, when there is no display to run on.
[[nodiscard]] std::optional<ChosenPlatform> choosePlatform(Options::PlatformChoice choice, std::string& error);

/// Needs the Qt application. Null, with a message in `error`, when it cannot be had after all. `lost` runs
/// on the main thread when the display has gone and with it everything to do.
[[nodiscard]] std::unique_ptr<Platform> openPlatform(const ChosenPlatform& chosen, std::unique_ptr<Dispatch> dispatch,
                                                     std::function<void()> lost, std::string& error);

}  // namespace tessaspaces
