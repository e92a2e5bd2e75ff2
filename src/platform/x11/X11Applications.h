#pragma once

#include "platform/Applications.h"
#include "platform/x11/DesktopFiles.h"
#include "platform/x11/Reader.h"

namespace tessaspaces {

/// Applications as far as X11 knows them: the processes that own windows, and the X clients that do not
/// name theirs (`receiveOwner`).
class X11Applications : public Applications {
 public:
  X11Applications(Connection& connection, Reader& reader, DesktopFiles& desktopFiles)
      : connection_(connection), reader_(reader), desktopFiles_(desktopFiles) {}

  std::optional<ApplicationInfo> frontmost() override;
  std::optional<ApplicationInfo> running(std::int32_t pid) override;
  std::vector<ApplicationInfo> runningWithBundleIdentifier(std::string_view identifier) override;
  /// From the window's own icons, the size nearest 64 pixels.
  ImageRef icon(std::int32_t pid) override;
  bool activate(std::int32_t pid) override;

 private:
  struct Owned {
    xcb_window_t window = XCB_NONE;
    std::int32_t pid = 0;
  };
  /// All client windows with their owners, front to back.
  std::vector<Owned> ownedWindows();
  std::optional<xcb_window_t> frontWindow(std::int32_t pid);
  /// `names` are the two parts of WM_CLASS.
  ApplicationInfo describe(std::int32_t pid, std::vector<std::string> names);
  std::vector<ApplicationInfo> describe(const std::vector<Owned>& windows);

  Connection& connection_;
  Reader& reader_;
  DesktopFiles& desktopFiles_;
};

/// The picture in the data of a _NET_WM_ICON property (for each icon width, height, and its pixels) whose
/// size is nearest `wanted`, with its alpha multiplied in; null when there is no whole picture.
[[nodiscard]] ImageRef pickIcon(std::span<const std::uint32_t> data, int wanted);

}  // namespace tessaspaces
