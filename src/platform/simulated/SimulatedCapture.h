#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/WindowCapture.h"
#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// Pictures of what windows draw: made up (one colour for each, a darker title bar) unless a test or a demo draws
/// something. As on a real system only what is on screen can be captured. Main thread.
class SimulatedCapture final : public WindowCapture {
 public:
  SimulatedCapture(SimulatedWorld& world, Dispatch& dispatch) : world_(world), dispatch_(dispatch) {}

  bool begin() override;
  void stop() override;
  void setLimits(const PreviewLimits& limits) override;
  ImageRef preview(WindowID window) override;
  std::vector<ImageRef> previews(std::span<const WindowID> windows) override;
  Wallpaper wallpaper(std::string_view display, SpaceID space, int longestSide) override;
  ImageRef screenContent(std::string_view display, int longestSide) override;
  std::vector<Rect> unlistedWindows() override { return begun_ ? unlisted_ : std::vector<Rect>{}; }

  // What the outside does.
  /// The window shows this from now on, or once it is on screen.
  void draw(WindowID window, ImageRef content);
  /// Space 0: whichever desktop the display shows.
  void setWallpaper(const std::string& display, SpaceID space, Wallpaper wallpaper);
  void setScreenContent(const std::string& display, ImageRef content);
  /// From now on menus and the like are on screen here, as on X11.
  void setUnlistedWindows(std::vector<Rect> windows) { unlisted_ = std::move(windows); }
  /// Something in the world has changed.
  void notice();

 private:
  struct Window {
    ImageRef shown;  // null: made up
    bool visible = false;
    bool stale = true;
    ImageRef picture;
  };
  void capture(WindowID id, Window& window);
  void announce(WindowID window);

  SimulatedWorld& world_;
  Dispatch& dispatch_;
  bool begun_ = false;
  PreviewLimits limits_;
  std::map<WindowID, Window> windows_;  // those that were on screen since `begin`
  std::map<WindowID, ImageRef> drawn_;
  std::set<WindowID> news_;
  std::map<std::pair<std::string, SpaceID>, Wallpaper> wallpapers_;
  std::map<std::pair<ImageRef, int>, ImageRef> scaledWallpapers_;  // by the original and the longest side
  std::map<std::string, ImageRef, std::less<>> screens_;
  std::vector<Rect> unlisted_;
};

}  // namespace tessaspaces
