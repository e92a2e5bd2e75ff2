#pragma once

#include <optional>

#include "base/Geometry.h"
#include "platform/Screens.h"

/// Geometry of screens. The operations that need to know the screens ask the platform when they are called. Any thread.
namespace tessaspaces::ScreenGeometry {

/// A screen's rectangle, with its origin at the bottom left of the first screen, in the coordinates of windows, with
/// the origin at that screen's top left and y downwards. The same the other way round. With no screens the first
/// counts as 0 high.
Rect flipped(const Rect& screenRect);

/// Width by height of the main screen; 16:9 when there is none, or when it has no height.
double screenAspect();

/// The extent of one of `columns` x `rows` equal tiles that fill the given room as far as their aspect (width by
/// height; absent: `screenAspect`) permits, `gap` points apart. A number of columns or rows below 1 counts as 1. Never
/// negative.
Size tileSize(double availableWidth, double availableHeight, int columns, int rows, double gap,
              std::optional<double> aspect = std::nullopt);

/// Height of what the system keeps at the top of the screen (the main one where there is none given) in points; 0 when
/// there is no screen at all.
double menuBarInset(const ScreenRef& screen);

}  // namespace tessaspaces::ScreenGeometry
