#include "platform/loop/WorkerPool.h"

#include <utility>

namespace tessaspaces {

WorkerPool::~WorkerPool() {
  close();
  // No job can add a thread any more: run() does nothing once closed.
  for (auto& thread : threads_) thread.join();
}

void WorkerPool::run(std::function<void()> job) {
  const std::lock_guard lock(mutex_);
  if (closed_) return;
  jobs_.push_back(std::move(job));
  if (jobs_.size() > idle_ && threads_.size() < maxThreads) {
    threads_.emplace_back([this] { work(); });
  } else {
    wake_.notify_one();
  }
}

void WorkerPool::close() {
  std::deque<std::function<void()>> dropped;  // destroyed after the lock: a job's captures may do anything
  const std::lock_guard lock(mutex_);
  closed_ = true;
  dropped.swap(jobs_);
  wake_.notify_all();
}

bool WorkerPool::finished() const {
  const std::lock_guard lock(mutex_);
  return closed_ && running_ == 0;
}

void WorkerPool::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    ++idle_;
    wake_.wait(lock, [this] { return closed_ || !jobs_.empty(); });
    --idle_;
    if (closed_) return;
    auto job = std::move(jobs_.front());
    jobs_.pop_front();
    ++running_;
    lock.unlock();
    job();
    job = nullptr;
    lock.lock();
    --running_;
  }
}

}  // namespace tessaspaces
