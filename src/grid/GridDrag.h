#pragma once

#include <utility>

#include "base/Geometry.h"
#include "bridges/Desktops.h"

namespace tessaspaces {

/// A preview in the user's hand. Points in the panel's coordinates.
class GridDrag {
 public:
  /// A press that moves less than this is a click.
  static constexpr double threshold = 5;
  static bool isMeant(Point pressed, Point now);

  /// `preview`: where the window's preview was, taken hold of at `grip`.
  GridDrag(SpaceWindow window, SpaceID fromSpace, const Rect& preview, Point grip);

  void moveTo(Point pointer) { pointer_ = pointer; }
  /// The window may have changed meanwhile; it is the same one.
  void update(SpaceWindow window) { window_ = std::move(window); }
  /// Notes whether the pointer is beyond the panel; true when it was before.
  bool exchangeOutside(bool outside) { return std::exchange(outside_, outside); }

  [[nodiscard]] const SpaceWindow& window() const { return window_; }
  [[nodiscard]] SpaceID fromSpace() const { return fromSpace_; }
  [[nodiscard]] Point pointer() const { return pointer_; }
  [[nodiscard]] bool isOutside() const { return outside_; }
  /// Where the preview is now: the pointer holds it where it took it.
  [[nodiscard]] Rect carried() const;
  [[nodiscard]] Point topLeft() const;

 private:
  SpaceWindow window_;
  SpaceID fromSpace_;
  Size size_;
  /// Of the pointer in the preview.
  Point offset_;
  Point pointer_;
  bool outside_ = false;
};

}  // namespace tessaspaces
