#pragma once

#include "platform/AccessibilityWindows.h"
#include "platform/x11/Connection.h"
#include "platform/x11/Reader.h"

namespace tessaspaces {

/// Other programs' windows by what EWMH lets a pager read and ask for.
class X11AccessibilityWindows : public AccessibilityWindows {
 public:
  X11AccessibilityWindows(Connection& connection, Reader& reader) : connection_(connection), reader_(reader) {}
  std::unique_ptr<AccessibilityWindow> find(std::int32_t pid, WindowID window) override;

 private:
  Connection& connection_;
  Reader& reader_;
};

}  // namespace tessaspaces
