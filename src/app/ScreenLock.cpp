#include "app/ScreenLock.h"

#include <fmt/format.h>

#include <QDBusConnection>
#include <QPointer>
#include <array>
#include <cstdlib>
#include <string>
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
  const char* session = std::getenv("XDG_SESSION_ID");
  const QString path = pathOfSession(session != nullptr ? session : "");
  // All sessions' signals reach everybody, and to lock another user's is no business of ours.
  if (path.isEmpty()) return;
  SessionBus::connectSystem([self = QPointer(this), path](QDBusConnection bus) {
    if (!self) return;
    // Naming the sender would have Qt ask the bus who that is, and wait.
    bus.connect({}, path, QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("Lock"), self, SLOT(lock()));
  });
}

QString ScreenLock::pathOfSession(std::string_view id) {
  if (id.empty()) return {};
  std::string path = "/org/freedesktop/login1/session/";
  // Paths consist of ASCII letters, digits and underscores; here they do not begin with a digit either.
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  for (std::size_t i = 0; i < id.size(); ++i) {
    if (isLetter(id[i]) || (isDigit(id[i]) && i > 0)) {
      path += id[i];
    } else {
      path += fmt::format("_{:02x}", static_cast<unsigned char>(id[i]));
    }
  }
  return QString::fromLatin1(path.data(), static_cast<qsizetype>(path.size()));
}

void ScreenLock::activeChanged(bool active) {
  if (active) locked_();
}

void ScreenLock::lock() {
  locked_();
}

}  // namespace tessaspaces
