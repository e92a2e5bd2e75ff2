#pragma once

#include <QPointer>
#include <QWindow>

#include "platform/x11/Xcb.h"
#include "ui/x11/HeldKeys.h"

namespace tessaspaces {

/// Keyboard and pointer of the display, held by one of the panels. Uses Qt's own connection, so that what is grabbed
/// comes to Qt's windows; sees every event on it before Qt does. Main thread.
class InputGrab {
 public:
  explicit InputGrab(xcb_connection_t* connection) : connection_(connection) {}

  /// As PanelSystem::takeInput.
  bool take(QWindow& window);
  void giveBack(QWindow& window);
  [[nodiscard]] QWindow* holder() const { return holder_; }

  /// What an event means for the grab.
  enum class Verdict {
    pass,     // it is Qt's
    swallow,  // nobody's: see HeldKeys
    broken,   // Qt's, and says that the grab was ended from outside
  };
  Verdict judge(const xcb_generic_event_t& event);

 private:
  void release();
  /// Whether the server sent the event after it had carried out that request.
  [[nodiscard]] static bool isSince(const xcb_generic_event_t& event, unsigned sequence);

  xcb_connection_t* connection_;
  QPointer<QWindow> holder_;
  HeldKeys held_;
  unsigned grabbedAt_ = 0;  // the sequence number of the grab's request, and of the look at what was down
  unsigned lookedAt_ = 0;
};

}  // namespace tessaspaces
