#pragma once

#include <QDBusConnection>
#include <functional>

namespace tessaspaces {

/// The desktop session's message bus, which there may be or not.
namespace SessionBus {

/// Call before anything of Qt runs: where the session has no bus, keeps every part of Qt from starting
/// one of its own, which takes long and leaves a process behind.
void prepareEnvironment();

/// Connects off the main thread, then hands the connection over on it, unless there is no bus.
void connect(std::function<void(QDBusConnection)> connected, std::function<void()> absent = {});

/// The same for the system's bus, where the session manager tells that the screen is locked.
void connectSystem(std::function<void(QDBusConnection)> connected, std::function<void()> absent = {});

/// The program is about to end: whoever connects gives up, and nothing is handed over any more. Whether the
/// bus has not answered yet, in which case Qt waits for it when it is unloaded.
bool abandon();

}  // namespace SessionBus
}  // namespace tessaspaces
