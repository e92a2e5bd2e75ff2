#include "app/ScreenLock.h"

#include <QDBusConnection>
#include <QPointer>
#include <array>
#include <utility>

#include "app/SessionBus.h"

namespace tessaspaces {
namespace {

/// The interfaces whose `ActiveChanged(bool)` tells of it; who says so depends on the desktop environment.
constexpr std::array screenSavers{"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver", "org.cinnamon.ScreenSaver",
                                  "org.mate.ScreenSaver", "org.xfce.ScreenSaver"};

}  // namespace

ScreenLock::ScreenLock(std::function<void()> locked, QObject* parent) : QObject(parent), locked_(std::move(locked)) {}

void ScreenLock::start() {
  // Any sender and path will do: some screen savers do not own the name that their interface suggests.
  SessionBus::connect([self = QPointer(this)](QDBusConnection bus) {
    if (!self) return;
    for (const char* interface : screenSavers) {
      bus.connect({}, {}, QString::fromLatin1(interface), QStringLiteral("ActiveChanged"), self,
                  SLOT(activeChanged(bool)));
    }
  });
  SessionBus::connectSystem([self = QPointer(this)](QDBusConnection bus) {
    if (!self) return;
    bus.connect(QStringLiteral("org.freedesktop.login1"), {}, QStringLiteral("org.freedesktop.login1.Session"),
                QStringLiteral("Lock"), self, SLOT(lock()));
  });
}

void ScreenLock::activeChanged(bool active) {
  if (active) locked_();
}

void ScreenLock::lock() {
  locked_();
}

}  // namespace tessaspaces
