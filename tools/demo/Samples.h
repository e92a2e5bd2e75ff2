#pragma once

#include <string>

#include "demo/Picture.h"

namespace tessaspaces::demo {

/// A made-up application: what its windows are called and look like.
struct Sample {
  std::string title;
  std::string className;
  Picture picture;
};

/// One of eight kinds of application, in a window of that size; `number` also varies what is in it.
[[nodiscard]] Sample sample(int number, int width, int height);
/// A landscape at dusk.
[[nodiscard]] Picture landscape(int width, int height);

}  // namespace tessaspaces::demo
