#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Signal.h"
#include "bridges/Desktops.h"
#include "grid/ExpectedMoves.h"
#include "grid/TileBackgrounds.h"
#include "platform/Dispatch.h"

namespace tessaspaces {

/// What the panels of the overview show, asked of the system once for all of them: one snapshot with the newest
/// previews, the names of applications, what lies behind the windows. Main thread.
class GridContents : public std::enable_shared_from_this<GridContents> {
 public:
  enum class Change {
    desktops,     // another snapshot
    pictures,     // other previews in the same one
    names,        // applicationNames
    backgrounds,  // to be asked for again
  };

  /// `backgrounds` outlives it.
  explicit GridContents(TileBackgrounds& backgrounds);
  ~GridContents();
  GridContents(const GridContents&) = delete;
  GridContents& operator=(const GridContents&) = delete;

  /// A snapshot, with icons and names of what runs by now. Long before an opening: what takes its time the first time
  /// is then at hand.
  void prepare();
  /// Windows that are on screen, now or later, have a preview from now on. Once their size is known (setPreviewLimits):
  /// another size makes them all anew.
  void keepPreviews();
  /// Everything anew for an opening, the previews of windows on screen brought up to date. Waits for the system: the
  /// snapshot is one batch of requests, the previews another. Announces nothing.
  void renew();
  /// After an opening, soon: names not known yet, and whether the wallpapers are still the same.
  void complete();

  /// The desktops of the screen's display, in the grid's order.
  [[nodiscard]] SpacesSnapshot desktopsOf(const ScreenRef& screen) const;
  /// For people, by process; only those known by now.
  [[nodiscard]] const std::map<std::int32_t, std::string>& applicationNames() const { return names_; }
  /// By space; `pixels` is how large a tile's content is, in device pixels.
  [[nodiscard]] std::map<SpaceID, TileBackground> backgrounds(const SpacesSnapshot& desktops, ImageSize pixels);
  /// How large previews are made from now on.
  void setPreviewLimits(const PreviewLimits& limits);

  /// As long as anybody holds what this returns, changes on the system are followed, several in quick succession at
  /// once.
  [[nodiscard]] std::shared_ptr<void> keepFresh();
  /// As long as anybody holds what this returns, nothing is taken in: the user has something of the snapshot in hand,
  /// and asking the system would make it stutter. It follows afterwards.
  [[nodiscard]] std::shared_ptr<void> hold();
  /// The same as a change on the system.
  void refreshSoon();

  /// The window is shown as if it stood there already, on that space, until `moveArrived` or `moveFailed`.
  ExpectedMoves::Number expectMove(const SpaceWindow& window, SpaceID to, bool leaves);
  /// It is shown on a desktop that it is still on its way to.
  [[nodiscard]] bool isLeaving(WindowID window) const { return expected_.isLeaving(window); }
  /// The system has been told: shown as expected for a moment longer, then as it is.
  void moveArrived(WindowID window, ExpectedMoves::Number number);
  /// Shown as it is, at once. False: another move of the same window was expected meanwhile.
  bool moveFailed(WindowID window, ExpectedMoves::Number number);

  Signal<Change> changed;

 private:
  struct Freshness;
  struct Hold;

  void readSnapshot();
  void refresh();
  void learnNames();
  void nameFullScreenApplications();
  void takePreviews(const std::vector<WindowID>& windows);
  [[nodiscard]] std::vector<WindowID> windows() const;
  void previewsChanged(const std::vector<WindowID>& windows);

  TileBackgrounds& backgrounds_;
  ScopedConnection backgroundsChanged_;
  SpacesSnapshot snapshot_;
  std::map<std::int32_t, std::string> names_;
  TimePoint nextAskAgain_{};
  /// The windows of the snapshot that are in full screen.
  std::set<WindowID> fullScreen_;
  ExpectedMoves expected_;
  bool captureAsked_ = false;
  std::optional<PreviewLimits> previewLimits_;

  std::weak_ptr<Freshness> freshness_;
  std::weak_ptr<Hold> hold_;
  bool refreshScheduled_ = false;
  TimePoint lastRefresh_{};
  // What came while it was held.
  bool heldRefresh_ = false;
  std::set<WindowID> heldPreviews_;
};

}  // namespace tessaspaces
