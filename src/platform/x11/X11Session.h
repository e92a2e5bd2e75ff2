#pragma once

#include <vector>

#include "platform/Screens.h"
#include "platform/Session.h"
#include "platform/WindowServer.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

/// On X11 nobody has to be asked; what can lack is an extension of the server.
class X11Permissions : public Permissions {
 public:
  explicit X11Permissions(Connection& connection) : connection_(connection) {}
  bool hasAccessibility() override { return connection_.extensions().xtest != 0; }
  bool hasScreenRecording() override { return connection_.extensions().composite != 0; }
  void request(bool /*openSettings*/) override {}

 private:
  Connection& connection_;
};

/// See Platform::examineSession. Any thread.
[[nodiscard]] std::vector<SessionFinding> examineX11Session(Connection& connection, WindowServer& server,
                                                            Screens& screens);

}  // namespace tessaspaces
