#include "platform/WindowList.h"

#include <algorithm>

namespace tessaspaces {

std::optional<WindowInfo> WindowList::frontWindow(std::int32_t ofPid) {
  auto entries = copyWindowInfo(WindowListOption::onScreenWithoutDesktopElements);
  if (!entries) return std::nullopt;
  const auto match = std::find_if(entries->begin(), entries->end(),
                                  [&](const WindowInfo& entry) { return entry.ownerPid == ofPid && entry.layer == 0; });
  return match == entries->end() ? std::nullopt : std::optional(std::move(*match));
}

}  // namespace tessaspaces
