#pragma once

#include <QString>

namespace tessaspaces {

/// Short messages to the user. Main thread.
namespace Alerts {

/// Shows a message in front of all windows and returns at once.
void info(const QString& title, const QString& body);

/// The same, but returns when the user has read it.
void infoAndWait(const QString& title, const QString& body);

}  // namespace Alerts
}  // namespace tessaspaces
