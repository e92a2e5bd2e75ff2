#pragma once

#include "platform/WindowList.h"
#include "platform/x11/Reader.h"
#include "platform/x11/X11WindowServer.h"

namespace tessaspaces {

/// The window manager's client list. In the on-screen list the active window stands before the other
/// windows of its process whatever their stacking: with tiling or focus without raising, stacking does not
/// tell which of them the user is in.
class X11WindowList : public WindowList {
 public:
  X11WindowList(Reader& reader, X11WindowServer& server) : reader_(reader), server_(server) {}
  std::optional<std::vector<WindowInfo>> copyWindowInfo(WindowListOption option) override;
  /// Asks about the active window alone where that is the one, as it mostly is.
  std::optional<WindowInfo> frontWindow(std::int32_t ofPid) override;

 private:
  Reader& reader_;
  X11WindowServer& server_;
};

}  // namespace tessaspaces
