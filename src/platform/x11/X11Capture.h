#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Dispatch.h"
#include "platform/WindowCapture.h"
#include "platform/x11/CaptureLink.h"
#include "platform/x11/CapturedWindows.h"
#include "platform/x11/PictureBatch.h"
#include "platform/x11/Reader.h"
#include "platform/x11/SharedSegment.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11Wallpapers.h"

namespace tessaspaces {

/// Window pictures by Composite. Window managers unmap what is on another desktop, and an unmapped window has no
/// content; but the content that it last had stays for as long as somebody has named it. So the content of each window
/// on screen is named, and when a window goes from there a small picture is made of it and the content let go. The
/// pictures lie in this process; the server holds nothing that it would not hold anyway for long.
class X11Capture : public WindowCapture {
 public:
  X11Capture(Connection& connection, Reader& reader, X11Screens& screens, Dispatch& dispatch)
      : connection_(connection), reader_(reader), screens_(screens), dispatch_(dispatch) {}
  ~X11Capture() override { stop(); }

  bool begin() override;
  void stop() override;
  void setLimits(const PreviewLimits& limits) override;
  ImageRef preview(WindowID window) override;
  std::vector<ImageRef> previews(std::span<const WindowID> windows) override;
  Wallpaper wallpaper(std::string_view display, SpaceID space, int longestSide) override;
  ImageRef screenContent(std::string_view display, int longestSide) override;
  std::vector<Rect> unlistedWindows() override;

  /// See Channel::roundTrips. Any thread, but not while `begin` or `stop` runs.
  [[nodiscard]] std::uint64_t roundTrips() const;

 private:
  struct Session;
  struct Place {
    std::string monitor;
    PixelRect area;
  };
  [[nodiscard]] std::optional<Place> placeOf(std::string_view display) const;

  void drain();
  void drainLater();
  void takeEvents();
  void act();
  void announceLater(const std::vector<WindowID>& windows);
  void announce();
  void sendDue();
  void addPicture(CapturedWindow& window);
  /// False when there was nothing in it.
  bool sendBatch();
  /// Waits for the batch under way, if any; the windows that got a picture by it.
  std::vector<WindowID> finishBatch();
  void releaseMemoryLater();
  void releaseMemory();
  /// Runs `work` on the main thread after `delay`, unless `stop` has been called by then.
  void after(Duration delay, std::function<void(Session&)> work);

  Connection& connection_;
  Reader& reader_;
  X11Screens& screens_;
  Dispatch& dispatch_;
  PreviewLimits limits_;
  std::shared_ptr<Session> session_;  // from `begin` to `stop`
};

}  // namespace tessaspaces
