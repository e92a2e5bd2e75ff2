#pragma once

#include <vector>

#include "harness/Session.h"

namespace tessaspaces::demo {

/// Ten desktops in rows of four: the last row is short, where wrapping is most interesting.
inline constexpr int desktops = 10;
inline constexpr int columns = 4;

/// A wallpaper, and windows of sample applications on all desktops: terminals where xterm is installed, drawn ones
/// besides.
class Scene {
 public:
  explicit Scene(harness::Session& session);

 private:
  std::vector<harness::Process> programs_;
};

/// So many windows spread evenly over so many desktops, each shown once so that it has been seen.
void crowd(harness::Session& session, int many, int windows);

}  // namespace tessaspaces::demo
