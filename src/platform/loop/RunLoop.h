#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/Dispatch.h"
#include "platform/loop/WorkerPool.h"

namespace tessaspaces {

/// The event loop of programs without a user interface: the command line, tests, tools. The thread that
/// constructs it is the main thread; nothing queued runs until that thread calls `run` or `runUntil`.
/// Sleeps in poll(2) until a descriptor, a timer or another thread needs it: no periodic wake-ups.
class RunLoop final : public Dispatch {
 public:
  RunLoop();
  /// Serves the background jobs that still run until they are done, then ends. Main thread.
  ~RunLoop() override;
  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;

  /// Serves until `quit`. Main thread.
  void run();
  /// Makes the innermost `run` or `runUntil` return. Any thread; one called before `run` counts for it.
  void quit();
  /// Serves until `done` holds or `deadline` has passed; returns whether it holds. `done` is asked before
  /// the first wait and after everything that ran. Main thread.
  bool runUntil(const std::function<bool()>& done, TimePoint deadline);

  void async(std::function<void()> work) override;
  void sync(std::function<void()> work) override;
  void after(Duration delay, std::function<void()> work) override;
  [[nodiscard]] RegistrationRef every(Duration interval, std::function<void()> tick) override;
  [[nodiscard]] RegistrationRef watch(int descriptor, std::function<void()> ready) override;
  void background(std::function<void()> work) override;
  [[nodiscard]] bool isMainThread() const override;
  [[nodiscard]] TimePoint now() const override;
  void sleep(Duration duration) override;
  [[nodiscard]] bool isEnding() const override { return ending_; }

 private:
  struct Timer {
    TimePoint due;
    Duration interval{};  // zero: once
    std::function<void()> work;
    bool active = true;
  };
  struct Watch {
    int descriptor;
    std::function<void()> ready;
    bool active = true;
  };
  template <class Entry>
  class Handle;

  void serve(TimePoint until);
  void wake();
  bool runQueue();
  bool runTimers();
  void runWatches(TimePoint until);
  [[nodiscard]] TimePoint nextDue(TimePoint until);

  const std::thread::id mainThread_ = std::this_thread::get_id();
  std::array<int, 2> wakePipe_{-1, -1};

  std::mutex mutex_;  // guards queue_, newTimers_ and woken_
  std::deque<std::function<void()>> queue_;
  std::vector<std::shared_ptr<Timer>> newTimers_;
  bool woken_ = false;

  std::atomic<bool> quit_ = false;
  std::atomic<bool> ending_ = false;
  std::vector<std::shared_ptr<Timer>> timers_;   // main thread only
  std::vector<std::shared_ptr<Watch>> watches_;  // main thread only
  WorkerPool pool_;                              // last: its jobs use all of the above
};

}  // namespace tessaspaces
