#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "platform/WindowServer.h"

namespace tessaspaces {

/// What yabai says about the desktops, read from the reply to its spaces query: a JSON array with an object for
/// each desktop. Replies come from another program and may be anything, however deeply nested.
///
/// Numbers are taken as whole: what follows the decimal point is cut off (1e3 and 1000.7 are both 1000). A number that
/// the wanted type cannot hold, such as a negative id, counts as missing, for it names no desktop. So do true and
/// false, except under "has-focus". A number beyond what a double can hold (1e400) makes the whole reply unreadable.
struct SpaceList {
  /// yabai's own number of each desktop, counted from 1 over all displays, by the window server's id.
  std::unordered_map<SpaceID, std::int64_t> indexByID;
  /// The desktop whose "has-focus" is true or a number other than 0; the last one if there are several.
  std::optional<SpaceID> focusedID;

  /// Absent when the desktop is not listed, or listed without an index.
  [[nodiscard]] std::optional<std::int64_t> index(SpaceID ofSpace) const;

  /// Absent when the text is not JSON or not an array of objects. An object without an id is passed over, one without
  /// an index may still be the focused one, and of two with the same id the later one's index counts.
  [[nodiscard]] static std::optional<SpaceList> parse(std::string_view reply);
  /// How many elements, whatever they are, the reply's array has. Absent when it is not an array.
  [[nodiscard]] static std::optional<std::int64_t> countSpaces(std::string_view reply);
  /// How many windows the first desktop with this index has. Absent when there is none, when it does not list its
  /// windows, or when the reply is not an array of objects.
  [[nodiscard]] static std::optional<std::int64_t> countWindows(std::string_view reply, std::int64_t onSpaceIndex);
};

}  // namespace tessaspaces
