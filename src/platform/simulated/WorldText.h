#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// A world as read from text. `windows[i].space` is the id that the space gets in an empty world.
struct WorldDescription {
  std::vector<DisplaySetup> displays;
  std::vector<ApplicationInfo> applications;
  std::vector<WindowSetup> windows;
};

/// Reads a world. The grammar, with blanks anywhere between words:
///
///   world   = display { ";" display }
///   display = name size [ "builtin" ] "|" { space | "/" }      at least one space
///   size    = width "x" height [ "+" x [ "+" y ] ]             position: right beside the last display if left out
///   space   = name { "*" | "!" } [ "[" { window } "]" ]
///
/// `*` marks the space that the display shows (the first one where none is marked), `!` a full-screen space;
/// `/` only helps the eye. A space named "-" has no name. Windows are listed front to back, their titles are
/// single words; each belongs to an application of its own with the same name, pids counting from 1001, but
/// windows of the same title share theirs. They stand in a cascade on their display.
///
/// Absent when the text is not such a world; `error` then says why and where ("display 'left': ..."): a
/// missing name, size, "|" or "]", a size that is not positive, no space, two spaces marked, a name used twice.
std::optional<WorldDescription> parseWorld(std::string_view text, std::string* error);

}  // namespace tessaspaces
