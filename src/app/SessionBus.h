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

}  // namespace SessionBus
}  // namespace tessaspaces
