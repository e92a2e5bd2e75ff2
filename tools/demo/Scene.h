#pragma once

#include <vector>

#include "harness/Session.h"

namespace tessaspaces::demo {

/// Ten desktops in rows of four: the last row is short, where wrapping is most interesting.
inline constexpr int desktops = 10;
inline constexpr int columns = 4;

/// Sample windows on all desktops: terminals where xterm is installed, plain windows besides.
class Scene {
 public:
  explicit Scene(harness::Session& session);

 private:
  std::vector<harness::Process> programs_;
};

}  // namespace tessaspaces::demo
