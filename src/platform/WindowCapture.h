#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/Geometry.h"
#include "base/Image.h"
#include "base/Signal.h"
#include "platform/WindowServer.h"

namespace tessaspaces {

/// How a wallpaper's picture is laid over the display.
enum class WallpaperFit {
  none,       // not shown at all
  centered,   // in its own size
  tiled,      // in its own size, again and again from the top left
  stretched,  // to the display's size, whatever that does to its aspect
  scaled,     // as large as fits, aspect kept
  zoomed,     // as small as covers the display, aspect kept
  spanned     // as `zoomed`, over all displays together
};

/// How two colours lie under a wallpaper's picture.
enum class WallpaperColors { solid, leftToRight, topToBottom };

/// A wallpaper that the user chose for one desktop of one display. Reading the picture is the caller's work.
struct WallpaperFile {
  /// An absolute path; empty where only the colours show.
  std::string path;
  WallpaperFit fit = WallpaperFit::zoomed;
  WallpaperColors colors = WallpaperColors::solid;
  /// 0xAARRGGBB; `solid` uses the first alone.
  std::uint32_t firstColor = 0xFF000000;
  std::uint32_t secondColor = 0xFF000000;
  friend bool operator==(const WallpaperFile&, const WallpaperFile&) = default;
};

/// What lies behind the windows of the whole display now, whichever desktop it shows (X11: the root pixmap). A
/// program may paint another one for each desktop: then this belongs to the one that is shown.
struct PaintedWallpaper {
  ImageRef image;  // never null, opaque
};

/// The wallpaper cannot be read: what the display shows can be learned by `WindowCapture::screenContent`.
struct UnknownWallpaper {};

/// Which of them it is says where it comes from.
using Wallpaper = std::variant<UnknownWallpaper, PaintedWallpaper, WallpaperFile>;

struct ImageSize {
  int width = 0;
  int height = 0;
  friend bool operator==(const ImageSize&, const ImageSize&) = default;
};
/// How large a picture of something comes out: as large as fits into a square of this side, aspect kept, each side at
/// least 1, never larger than `size`. A side of 0 sets no limit.
[[nodiscard]] ImageSize fitted(ImageSize size, int longestSide);

/// How large previews are made: best about as large as they are going to be drawn, since a hundred of them shall
/// neither take much memory nor be scaled when there is no time for it.
struct PreviewLimits {
  /// Of the window's own size; above 0, at most 1.
  double scale = 1;
  /// Pixels on the longer side; at least 1.
  int longestSide = 480;
  friend bool operator==(const PreviewLimits&, const PreviewLimits&) = default;
};
/// The same within both limits. Limits that make no sense are taken for the nearest that do.
[[nodiscard]] ImageSize fitted(ImageSize size, const PreviewLimits& limits);

/// Pictures of windows, of what lies behind them and of whole displays. Images are in device pixels, smaller than the
/// original at most. Main thread, with its signals. Before `begin` nothing is asked of the system, and every picture is
/// null and every wallpaper unknown.
class WindowCapture {
 public:
  virtual ~WindowCapture() = default;

  /// Keeps previews from now on: of each ordinary window that is on screen now or comes there later. A window whose
  /// desktop is left keeps what it last showed. True when it does (also if it did before), false where the system
  /// offers no pictures of windows (X11 without Composite, Damage, Render or XFixes).
  virtual bool begin() = 0;
  /// Forgets all previews and gives everything back that the system held for them. `begin` may follow.
  virtual void stop() = 0;
  /// Of previews made from now on; a default PreviewLimits unless set. Windows on screen get a new preview in this
  /// size, hidden ones keep theirs.
  virtual void setLimits(const PreviewLimits& limits) = 0;

  /// The newest preview at hand, without asking the system: of a window on screen it may be out of date. It shows what
  /// WindowInfo::bounds encloses, decorations included (under i3, which tells nobody of its title bars, also these).
  /// Null for a window that was not on screen since `begin`, or is gone.
  virtual ImageRef preview(WindowID window) = 0;
  /// Parallel to `windows`: their previews as `preview` has them, after those of windows on screen were brought up to
  /// date. Waits for the system: on X11 for at most three answers, however many windows there are (more once all that
  /// changed exceeds 64 MiB of previews).
  virtual std::vector<ImageRef> previews(std::span<const WindowID> windows) = 0;

  /// What lies behind the windows of a desktop, a picture at most `longestSide` pixels wide and high (0: as it is). The
  /// same image object again as long as nothing has changed. Unknown for a display that is not there.
  virtual Wallpaper wallpaper(std::string_view display, SpaceID space, int longestSide) = 0;
  /// What the display (ManagedDisplay::displayIdentifier) shows now, windows and all, at most `longestSide` pixels wide
  /// and high (0: as it is). Opaque. Null for a display that is not there.
  virtual ImageRef screenContent(std::string_view display, int longestSide) = 0;
  /// Where `screenContent` shows windows now that the window list may not have (X11: menus, tool tips, notifications,
  /// lockers and whatever else keeps out of the window manager's hands, also this program's own), on any display, in
  /// the coordinates of WindowInfo::bounds. Empty before `begin`, and where the list has all. On X11 a few round trips.
  virtual std::vector<Rect> unlistedWindows() = 0;

  /// These windows look different now, or have a preview for the first time. A few times a second at most, and for a
  /// window on screen not again until `previews` was asked for it.
  Signal<const std::vector<WindowID>&> previewsChanged;
  /// Wallpapers asked for before may be out of date. (X11: of a painted one; a changed choice comes out when asked
  /// again.)
  Signal<> wallpaperChanged;
};

}  // namespace tessaspaces
