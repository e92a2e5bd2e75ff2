#pragma once

#include <xcb/damage.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <unordered_map>
#include <vector>

#include "platform/Dispatch.h"
#include "platform/x11/CaptureLink.h"
#include "platform/x11/PictureBatch.h"

namespace tessaspaces {

/// One client window as far as its picture goes. What is drawn on the screen for it is its frame: the child of the root
/// that holds it, or itself.
struct CapturedWindow {
  xcb_window_t client = XCB_NONE;
  /// The child of the root that holds it, or itself, whether captured or not; none while it is not known.
  xcb_window_t top = XCB_NONE;
  xcb_window_t frame = XCB_NONE;  // none while it is not known, or not to be captured
  bool mapped = false;
  TimePoint mappedAt;
  ImageSize frameSize;      // borders included
  bool redirected = false;  // by us
  xcb_damage_damage_t damage = XCB_NONE;
  /// The server's content of the frame. It keeps what the frame last showed after that is unmapped.
  xcb_pixmap_t content = XCB_NONE;
  std::optional<xcb_get_geometry_cookie_t> contentAsked;  // whether it could be named, and what it is like
  ImageSize contentSize;
  std::uint8_t contentDepth = 0;

  bool stale = true;  // the picture does not show what the content shows
  ImageRef picture;
};

/// Follows the client windows, their frames, and what happens to these, over the capture connection. Never holds more
/// than one full-size content of a window on screen, and one of a window that just left it. Main thread.
class CapturedWindows {
 public:
  CapturedWindows(CaptureLink& link, const Dispatch& dispatch) : link_(link), dispatch_(dispatch) {}
  CapturedWindows(const CapturedWindows&) = delete;
  CapturedWindows& operator=(const CapturedWindows&) = delete;
  ~CapturedWindows();

  void handle(const xcb_generic_event_t& event);
  /// Takes in new and reparented windows; a few round trips when there are any.
  void update();
  void forgetList() { listStale_ = true; }
  [[nodiscard]] bool hasCompositor() const { return compositor_; }
  /// A compositor, which redirects all windows itself, came or went.
  void setCompositor(bool running);

  /// Null when it is not there.
  CapturedWindow* find(WindowID window);
  /// This child of the root is a listed window, or the frame of one.
  [[nodiscard]] bool holdsClient(xcb_window_t top) const;
  /// Shown so recently that it may not have drawn itself again, while an older picture is at hand.
  [[nodiscard]] bool isSettling(const CapturedWindow& window) const;
  static constexpr auto settleTime = std::chrono::milliseconds(200);

  /// Makes sure that the window's content, where it has one, can be taken a picture of; waits for the server at most
  /// once for several in a row. False where there is none.
  bool knowContent(CapturedWindow& window);
  /// Tries once more to name the content of those on screen that have none.
  void retry(std::span<CapturedWindow* const> windows);
  /// Its content is about to be read: from now on changes count as new.
  void beginPicture(CapturedWindow& window);
  void freeContent(CapturedWindow& window);
  /// Pictures of windows on screen are to be made anew.
  void outdatePictures();

  // Emptied by the caller:
  std::set<WindowID> changed;  // stale now, or gone
  std::set<WindowID> left;     // gone from the screen; the content waits to be read

 private:
  void readList();
  void resolveFrames();
  void attach(std::span<CapturedWindow*> windows);
  void detach(CapturedWindow& window);
  void erase(xcb_window_t client);
  void nameContent(CapturedWindow& window);
  void redirect(CapturedWindow& window);
  CapturedWindow* byFrame(xcb_window_t frame);
  void handleUnmap(CapturedWindow& window);
  void handleDestroy(xcb_window_t window);

  CaptureLink& link_;
  const Dispatch& dispatch_;
  bool compositor_ = false;
  bool listStale_ = true;
  std::set<xcb_window_t> listed_;
  std::set<xcb_window_t> unresolved_;  // their frame is to be looked for
  std::map<xcb_window_t, CapturedWindow> windows_;
  std::unordered_map<xcb_window_t, xcb_window_t> clientOf_;  // by frame
};

}  // namespace tessaspaces
