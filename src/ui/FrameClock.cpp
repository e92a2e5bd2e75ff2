#include "ui/FrameClock.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace tessaspaces {

void FrameCount::shown(int missed, double milliseconds) {
  ++frames_;
  dropped_ += missed;
  longest_ = std::max(longest_, milliseconds);
}

void FrameCount::end(std::string_view what) {
  static const char* const path = std::getenv("TESSASPACES_FRAME_LOG");
  if (path != nullptr && frames_ > 0) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "a"), &std::fclose);
    if (file) {
      std::fprintf(file.get(), "%.*s: %d frames, %d dropped, longest %.1f ms\n", static_cast<int>(what.size()),
                   what.data(), frames_, dropped_, longest_);
    }
  }
  begin();
}

FrameClock::FrameClock(std::function<void(double, int)> frame) : frame_(std::move(frame)) {
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { tick(); });
}

void FrameClock::start(double rate) {
  // Some displays say 0, or nonsense.
  rate_ = rate >= 20 && rate <= 500 ? rate : 60;
  last_ = 0;
  elapsed_.start();
  wait();
}

void FrameClock::wait() {
  const double due = static_cast<double>(last_ + 1) / rate_ - seconds();
  timer_.start(std::max(0, static_cast<int>(std::ceil(due * 1000))));
}

void FrameClock::tick() {
  const double now = seconds();
  // A timer may ring a little early.
  const auto frame = std::max(last_ + 1, static_cast<long long>(now * rate_));
  const auto missed = static_cast<int>(frame - last_ - 1);
  last_ = frame;
  wait();
  frame_(now, missed);  // may stop or start it
}

}  // namespace tessaspaces
