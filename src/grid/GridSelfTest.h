#pragma once

#include <string>

#include "grid/GridCoordinator.h"

namespace tessaspaces {

struct GridSelfTestReport {
  int checks = 0;
  int failures = 0;
  /// For people, in their language: a sentence on the whole, a line for each panel, a line for each failure.
  std::string text;
};

/// Looks the open overview over on the live system: whether every panel shows the desktops that its display has, where
/// they belong, whether everything is found under its own middle, whether windows on screen have a preview, and whether
/// windows can be drawn apart. An overview that is not open is a failure. Changes nothing; logs the outcome. Main
/// thread.
GridSelfTestReport runGridSelfTest(const GridCoordinator& coordinator);

}  // namespace tessaspaces
