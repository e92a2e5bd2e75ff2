#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tessaspaces {

/// The threads behind Dispatch::background. Threads are started when there is work for them, up to
/// `maxThreads`, and block without waking up while there is none. Jobs start in the order of the calls and
/// run beside one another.
class WorkerPool {
 public:
  static constexpr std::size_t maxThreads = 4;

  WorkerPool() = default;
  /// Like close, then waits for the running jobs. A job that waits for the main thread (Dispatch::sync)
  /// needs that thread to serve it meanwhile: the owner polls `finished` first, serving its queue.
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  /// Any thread, jobs included. Dropped after close.
  void run(std::function<void()> job);
  /// Takes no more jobs and drops those that have not started.
  void close();
  /// True once the pool is closed and no job runs any more.
  [[nodiscard]] bool finished() const;

 private:
  void work();

  mutable std::mutex mutex_;  // guards everything below
  std::condition_variable wake_;
  std::deque<std::function<void()>> jobs_;
  std::vector<std::thread> threads_;
  std::size_t idle_ = 0;
  std::size_t running_ = 0;
  bool closed_ = false;
};

}  // namespace tessaspaces
