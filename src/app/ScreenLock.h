#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <string_view>

namespace tessaspaces {

/// Hears of the screen being locked, from whichever of the session's programs says so on the message buses. Where none
/// does, nothing is ever heard. Main thread.
class ScreenLock final : public QObject {
  Q_OBJECT

 public:
  explicit ScreenLock(std::function<void()> locked, QObject* parent = nullptr);

  /// Begins to listen, once the buses have answered; returns at once.
  void start();

  /// The object under which the session manager speaks of the session with this id, as XDG_SESSION_ID names it; empty
  /// when there is no id. Any thread.
  [[nodiscard]] static QString pathOfSession(std::string_view id);

 private Q_SLOTS:
  /// A screen saver's signal: it went on, or off.
  void activeChanged(bool active);
  /// The session manager's: this session is to be locked.
  void lock();

 private:
  std::function<void()> locked_;
};

}  // namespace tessaspaces
