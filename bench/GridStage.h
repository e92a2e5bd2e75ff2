#pragma once

#include "harness/Overview.h"

namespace tessaspaces::bench {

/// A session with windows spread evenly over desktops, all of them shown once so that each window has a preview, and
/// the program in it with the overview's zoom as wanted.
class GridStage {
 public:
  struct Size {
    int width = 1920;
    int height = 1080;
    int desktops = 4;
    int windows = 20;
  };
  GridStage(Size size, bool zoom);

  harness::Session session;
  harness::Overview overview;

 private:
  void openWindows(const Size& size);
  void showAllDesktops(int desktops);
};

}  // namespace tessaspaces::bench
