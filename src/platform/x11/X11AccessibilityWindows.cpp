#include "platform/x11/X11AccessibilityWindows.h"

namespace tessaspaces {

std::unique_ptr<AccessibilityWindow> X11AccessibilityWindows::find(std::int32_t /*pid*/, WindowID /*window*/) {
  static_cast<void>(connection_), static_cast<void>(reader_);
  return nullptr;
}

}  // namespace tessaspaces
