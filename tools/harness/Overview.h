#pragma once

#include <vector>

#include "harness/Session.h"

namespace tessaspaces::harness {

/// The program's overview as an onlooker sees it: its panels among the server's windows, and where a person would find
/// tiles and previews in them. Worked out a second time on purpose: a fault in the program's own geometry must not hide
/// itself.
class Overview {
 public:
  /// The grid's size as the program has it in its settings, and the monitors by their frames, left to right; none: one
  /// that fills the screen. All tiles have the shape of the first of them.
  Overview(Session& session, int rows, int columns, std::vector<Rectangle> monitors = {});

  /// The settings changed: so many rows and columns.
  void resize(int rows, int columns) { rows_ = rows, columns_ = columns; }

  /// Option + shift + space, which opens and closes it; option + shift + G for its other view.
  static constexpr KeyCombo key{49, KeyCombo::option | KeyCombo::shift};
  static constexpr KeyCombo viewKey{5, KeyCombo::option | KeyCombo::shift};

  /// The panels that are on screen.
  [[nodiscard]] std::vector<Rectangle> panels() const;
  /// One on each monitor.
  bool waitUntilOpen(Milliseconds timeout = patience) const;
  bool waitUntilClosed(Milliseconds timeout = patience) const;
  /// Somebody holds the whole keyboard: while panels are open, they do. Left as found.
  [[nodiscard]] bool keyboardIsTaken() const;
  /// Presses the key and waits until panels are there (or gone) and have the keyboard: a key then comes to them.
  /// Throws when that does not happen.
  void open() const;
  void close() const;

  /// The tile at position `index` of `count` on a monitor, its content, and its middle.
  [[nodiscard]] Rectangle content(int index, int count, std::size_t monitor = 0) const;
  [[nodiscard]] std::pair<int, int> middle(int index, int count, std::size_t monitor = 0) const;
  /// Where in a tile a point of that monitor's desktop is.
  [[nodiscard]] std::pair<int, int> pointInTile(int index, int count, int x, int y, std::size_t monitor = 0) const;

  [[nodiscard]] const std::vector<Rectangle>& monitors() const { return monitors_; }

 private:
  Session* session_;
  int rows_;
  int columns_;
  std::vector<Rectangle> monitors_;
};

}  // namespace tessaspaces::harness
