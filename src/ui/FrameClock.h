#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>
#include <string_view>

namespace tessaspaces {

/// Counts what was shown of a movement, for measurements: with TESSASPACES_FRAME_LOG set to a file, a line is added to
/// it for each one.
class FrameCount {
 public:
  void begin() { *this = {}; }
  /// One more frame is on the screen; `missed` frames of the display went by that should have shown others, and it
  /// took so long since it was due.
  void shown(int missed, double milliseconds);
  /// Writes the line, unless nothing was shown.
  void end(std::string_view what);

 private:
  int frames_ = 0;
  int dropped_ = 0;
  double longest_ = 0;
};

/// Calls back in step with a display for as long as something moves: once for each of its frames, at the time that
/// the frame is for. A call that comes late is for the frame of that time; those in between are left out. Main thread.
class FrameClock {
 public:
  /// `frame` is given the seconds since `start` and how many frames were left out since the last call.
  explicit FrameClock(std::function<void(double seconds, int missed)> frame);

  /// From now on, `rate` times a second. A running one starts again.
  void start(double rate);
  void stop() { timer_.stop(); }
  [[nodiscard]] bool isRunning() const { return timer_.isActive(); }
  /// Since `start`.
  [[nodiscard]] double seconds() const { return static_cast<double>(elapsed_.nsecsElapsed()) / 1e9; }

 private:
  void wait();
  void tick();

  std::function<void(double, int)> frame_;
  QTimer timer_;
  QElapsedTimer elapsed_;
  double rate_ = 60;
  long long last_ = 0;
};

}  // namespace tessaspaces
