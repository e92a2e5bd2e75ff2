#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <functional>

namespace tessaspaces {

/// Turns Qt's event loop until `holds`; false when it does not within ten seconds.
inline bool waitFor(const std::function<bool()>& holds) {
  const QDeadlineTimer deadline(10000);
  QTimer wake;  // for conditions that change without an event of ours
  wake.start(10);
  while (!holds() && !deadline.hasExpired()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return holds();
}

}  // namespace tessaspaces
