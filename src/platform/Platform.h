#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/AccessibilityWindows.h"
#include "platform/Applications.h"
#include "platform/Dispatch.h"
#include "platform/HotKeyRegistrar.h"
#include "platform/InputEvents.h"
#include "platform/Screens.h"
#include "platform/Session.h"
#include "platform/WindowCapture.h"
#include "platform/WindowList.h"
#include "platform/WindowServer.h"

namespace tessaspaces {

/// The seam: everything that the program asks of the system it runs on. `main` makes one platform and
/// hands it over; nothing above this folder asks which one it is.
class Platform {
 public:
  virtual ~Platform() = default;

  virtual WindowServer& windowServer() = 0;
  virtual WindowList& windowList() = 0;
  virtual Screens& screens() = 0;
  virtual Applications& applications() = 0;
  virtual AccessibilityWindows& accessibility() = 0;
  virtual InputEvents& inputEvents() = 0;
  virtual HotKeyRegistrar& hotKeys() = 0;
  virtual WindowCapture& windowCapture() = 0;
  virtual Preferences& preferences() = 0;
  virtual LoginItem& loginItem() = 0;
  virtual Permissions& permissions() = 0;
  virtual Dispatch& dispatch() = 0;

  /// "x11", "simulated" or "mac".
  [[nodiscard]] virtual std::string name() const = 0;
  /// The version that decides between the old and the new ways of switching. X11 and simulated: 27.0.
  [[nodiscard]] virtual OperatingSystemVersion operatingSystemVersion() const = 0;
  /// The process id under which this program's own windows appear in the window list.
  [[nodiscard]] virtual std::int32_t processID() const = 0;
  /// What the readiness screen shows; looked up afresh at each call. One finding per SessionFact.
  virtual std::vector<SessionFinding> examineSession() = 0;
};

/// The platform handed over by `setPlatform`; a fatal stop when there is none.
Platform& platform();
/// Makes `platform` the one that the program runs on, or none. The caller keeps ownership and must keep
/// it alive until it hands over another. Main thread, while no other thread uses the old one.
void setPlatform(Platform* platform);
[[nodiscard]] bool hasPlatform();

}  // namespace tessaspaces
