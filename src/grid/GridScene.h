#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "base/Image.h"
#include "platform/WindowServer.h"

namespace tessaspaces {

/// What lies behind the windows of a tile.
struct TileBackground {
  /// Covers the tile's content, whatever its own size; the nearer it is to the content in device pixels, the less there
  /// is to do. Null: the colour alone.
  ImageRef image;
  /// 0xAARRGGBB, opaque.
  std::uint32_t color = 0xFF3B4252;
  friend bool operator==(const TileBackground&, const TileBackground&) = default;
};

/// All that one panel of the overview shows, ready to be drawn: where everything is and what it looks like, without a
/// word on why. Plain values: two scenes are equal exactly when they look the same (images count by identity).
///
/// Rectangles are in points, origin at the panel's top left, y downwards. Texts are UTF-8, in the user's language.
struct GridScene {
  struct Window {
    WindowID id = 0;
    /// All-zero: not to be seen.
    Rect rect;
    /// The preview; null: the icon stands in for it (GridLayout::iconRect), on a plain card.
    ImageRef picture;
    /// Null: none known.
    ImageRef icon;
    std::string title;
    std::string application;
    enum class Look {
      plain,
      hovered,  // the pointer is over it: outlined
      lit,      // matches the filter
      best,     // matches it best: Enter goes there
      dimmed,   // does not match
      lifted,   // in the user's hand: only its place is marked
    };
    Look look = Look::plain;
    friend bool operator==(const Window&, const Window&) = default;
  };

  struct Tile {
    SpaceID space = 0;
    Rect rect;
    /// Where background and windows are, clipped.
    Rect content;
    TileBackground background;
    /// The desktop's name, and its number in the grid, from 1.
    std::string label;
    int number = 0;
    /// The application that covers the desktop in full screen; empty: none.
    std::string fullScreenApplication;
    /// Front to back, as the desktop has them: to be drawn from the last to the first, dimmed ones below all others.
    std::vector<Window> windows;
    bool current = false;     // the display shows it: ringed
    bool selected = false;    // the keyboard's selection is here
    bool hovered = false;     // the pointer is over it
    bool dropTarget = false;  // a window in hand would land here
    bool dimmed = false;      // a filter is set and nothing here matches
    friend bool operator==(const Tile&, const Tile&) = default;
  };

  /// The place that adds a desktop when it is clicked.
  struct Plus {
    Rect rect;
    bool hovered = false;
    bool selected = false;
    /// A desktop is being added.
    bool busy = false;
    friend bool operator==(const Plus&, const Plus&) = default;
  };

  /// A window in the user's hand, drawn over everything; may reach beyond the panel.
  struct Carried {
    Window window;
    friend bool operator==(const Carried&, const Carried&) = default;
  };

  Size bounds;
  /// Height at the top that the system keeps for itself; the header lies below it.
  double menuBarInset = 0;
  /// GridLayout::headerRect.
  Rect header;
  /// The display's name, in the header.
  std::string title;
  /// What the keys do, or what just happened, at the bottom; may be empty.
  std::string hint;
  /// What was typed to filter windows; empty: no filter.
  std::string filter;
  /// How many windows match, on this panel.
  int matches = 0;
  /// This panel has the keyboard.
  bool keyboard = false;
  bool exploded = false;
  std::vector<Tile> tiles;
  std::optional<Plus> plus;
  std::optional<Carried> carried;

  friend bool operator==(const GridScene&, const GridScene&) = default;
};

}  // namespace tessaspaces
