#pragma once

#include <chrono>
#include <cstdint>

#include "platform/Dispatch.h"
#include "platform/WindowServer.h"

namespace tessaspaces::Spaces {

enum class MoveResult {
  moved,
  failed,
  overtaken,  // by a later move of the same window, or by the end of the program: no sign that it cannot be moved
};

/// Carries a window to another desktop without switching to it: four requests in a fixed order, and after each a look
/// at where the window is. From its making on it is the latest move of that window, and earlier ones give way.
class WindowMove {
 public:
  WindowMove(WindowID window, SpaceID toSpace);
  ~WindowMove();
  WindowMove(const WindowMove&) = delete;
  WindowMove& operator=(const WindowMove&) = delete;

  /// How long a window may take to arrive before anybody looks.
  static constexpr Duration settleTime = std::chrono::milliseconds(180);

  /// Makes the first request, which nearly always is enough, and does not wait for the window. Once; any thread.
  void start();
  /// Looks what came of it, not before `settleTime` after `start`, and makes the other requests as far as they are
  /// needed. Once. Blocks for up to 0.72 s, so it belongs off the main thread.
  MoveResult finish();

 private:
  [[nodiscard]] bool isOver() const;

  const WindowID window_;
  const SpaceID toSpace_;
  std::uint64_t number_ = 0;
  TimePoint started_;
};

/// Such a move from beginning to end: true when the window ended up on the desktop. Blocks for up to 0.72 s, off the
/// main thread.
bool move(WindowID window, SpaceID toSpace);

/// The same for a window of another application by whatever way this system has: where windows cannot be moved
/// natively, through the external window manager.
bool moveOtherAppWindow(WindowID window, SpaceID toSpace);
/// `moveOtherAppWindow`, with what else may become of it.
MoveResult tryMoveOtherAppWindow(WindowID window, SpaceID toSpace);

}  // namespace tessaspaces::Spaces
