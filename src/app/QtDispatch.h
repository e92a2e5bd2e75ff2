#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>

#include "platform/Dispatch.h"
#include "platform/loop/WorkerPool.h"

namespace tessaspaces {

/// The event loop of the Qt application as the core wants it. The main thread is the one that makes it,
/// which has a QCoreApplication by then.
class QtDispatch final : public Dispatch {
 public:
  QtDispatch();
  ~QtDispatch() override;

  void async(std::function<void()> work) override;
  /// Returns without running `work` once the dispatch is closed: nobody turns the loop any more.
  void sync(std::function<void()> work) override;
  void after(Duration delay, std::function<void()> work) override;
  [[nodiscard]] RegistrationRef every(Duration interval, std::function<void()> tick) override;
  [[nodiscard]] RegistrationRef watch(int descriptor, std::function<void()> ready) override;
  void background(std::function<void()> work) override;
  [[nodiscard]] bool isMainThread() const override;
  [[nodiscard]] TimePoint now() const override;
  /// Cut short when the dispatch closes.
  void sleep(Duration duration) override;
  [[nodiscard]] bool isEnding() const override;

  /// The program is about to end: whoever waits in `sync` or `sleep` returns at once, nothing that is still
  /// queued runs, and the background jobs are over when this returns. Main thread.
  void close();

 private:
  class Queue;

  std::unique_ptr<Queue> queue_;
  mutable std::mutex mutex_;  // guards closed_, pool_ being there, and the state of every sync call under way
  std::condition_variable changed_;
  bool closed_ = false;
  std::unique_ptr<WorkerPool> pool_;
};

}  // namespace tessaspaces
