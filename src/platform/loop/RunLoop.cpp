#include "platform/loop/RunLoop.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <limits>
#include <utility>

#include "base/Fatal.h"

namespace tessaspaces {

/// Lets a timer or watch go; the entry itself is swept out by the loop, which may be inside its callback.
template <class Entry>
class RunLoop::Handle : public Registration {
 public:
  explicit Handle(std::shared_ptr<Entry> entry) : entry_(std::move(entry)) {}
  ~Handle() override { entry_->active = false; }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

 private:
  std::shared_ptr<Entry> entry_;
};

RunLoop::RunLoop() {
  // A pipe rather than an eventfd: the same loop serves the command line on every platform.
  if (::pipe(wakePipe_.data()) != 0) fatal("no file descriptors left for the event loop");
  for (const int end : wakePipe_) {
    ::fcntl(end, F_SETFL, O_NONBLOCK);
    ::fcntl(end, F_SETFD, FD_CLOEXEC);
  }
}

RunLoop::~RunLoop() {
  ending_ = true;
  pool_.close();
  // A running job may be waiting in sync for this very thread.
  while (!pool_.finished()) serve(now() + std::chrono::milliseconds(5));
  for (const int end : wakePipe_) ::close(end);
}

void RunLoop::run() {
  while (!quit_.exchange(false)) serve(TimePoint::max());
}

void RunLoop::quit() {
  quit_ = true;
  wake();
}

bool RunLoop::runUntil(const std::function<bool()>& done, TimePoint deadline) {
  while (!done()) {
    if (quit_.exchange(false) || now() >= deadline) return false;
    serve(deadline);
  }
  return true;
}

void RunLoop::async(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(work));
  }
  wake();
}

void RunLoop::sync(std::function<void()> work) {
  if (isMainThread()) {
    work();
    return;
  }
  std::mutex mutex;  // guards done
  std::condition_variable changed;
  bool done = false;
  async([&] {
    work();
    // Notified under the lock: the waiter owns all three and leaves as soon as it sees `done`.
    const std::lock_guard lock(mutex);
    done = true;
    changed.notify_one();
  });
  std::unique_lock lock(mutex);
  changed.wait(lock, [&] { return done; });
}

void RunLoop::after(Duration delay, std::function<void()> work) {
  auto timer = std::make_shared<Timer>(Timer{now() + delay, {}, std::move(work)});
  {
    const std::lock_guard lock(mutex_);
    newTimers_.push_back(std::move(timer));
  }
  wake();
}

RegistrationRef RunLoop::every(Duration interval, std::function<void()> tick) {
  // A zero interval would starve everything else.
  interval = std::max<Duration>(interval, std::chrono::milliseconds(1));
  auto timer = std::make_shared<Timer>(Timer{now() + interval, interval, std::move(tick)});
  timers_.push_back(timer);
  return std::make_unique<Handle<Timer>>(std::move(timer));
}

RegistrationRef RunLoop::watch(int descriptor, std::function<void()> ready) {
  auto entry = std::make_shared<Watch>(Watch{descriptor, std::move(ready)});
  watches_.push_back(entry);
  return std::make_unique<Handle<Watch>>(std::move(entry));
}

void RunLoop::background(std::function<void()> work) {
  pool_.run(std::move(work));
}

bool RunLoop::isMainThread() const {
  return std::this_thread::get_id() == mainThread_;
}

TimePoint RunLoop::now() const {
  return std::chrono::steady_clock::now();
}

void RunLoop::sleep(Duration duration) {
  std::this_thread::sleep_for(duration);
}

void RunLoop::wake() {
  {
    const std::lock_guard lock(mutex_);
    if (woken_ || isMainThread()) return;  // the main thread looks at the queue before it waits
    woken_ = true;
  }
  const char byte = 0;
  [[maybe_unused]] const auto written = ::write(wakePipe_[1], &byte, 1);
}

void RunLoop::serve(TimePoint until) {
  const bool queued = runQueue();
  const bool ticked = runTimers();
  // Work that just ran may have met the caller's condition: look at the descriptors without waiting.
  runWatches(queued || ticked ? now() : until);
}

bool RunLoop::runQueue() {
  std::deque<std::function<void()>> work;
  {
    const std::lock_guard lock(mutex_);
    work.swap(queue_);
  }
  for (auto& job : work) job();
  return !work.empty();
}

bool RunLoop::runTimers() {
  {
    const std::lock_guard lock(mutex_);
    timers_.insert(timers_.end(), newTimers_.begin(), newTimers_.end());
    newTimers_.clear();
  }
  std::erase_if(timers_, [](const auto& timer) { return !timer->active; });
  const auto time = now();
  std::vector<std::shared_ptr<Timer>> due;
  std::copy_if(timers_.begin(), timers_.end(), std::back_inserter(due),
               [&](const auto& timer) { return timer->due <= time; });
  std::stable_sort(due.begin(), due.end(), [](const auto& a, const auto& b) { return a->due < b->due; });
  for (const auto& timer : due) {
    if (!timer->active) continue;
    if (timer->interval == Duration::zero()) {
      timer->active = false;
    } else {
      timer->due += timer->interval;
      if (timer->due <= time) timer->due = time + timer->interval;  // ticks that were missed are not made up
    }
    timer->work();
  }
  return !due.empty();
}

TimePoint RunLoop::nextDue(TimePoint until) {
  const std::lock_guard lock(mutex_);
  if (!queue_.empty() || !newTimers_.empty() || quit_) return now();
  for (const auto& timer : timers_) {
    if (timer->active) until = std::min(until, timer->due);
  }
  return until;
}

void RunLoop::runWatches(TimePoint until) {
  std::erase_if(watches_, [](const auto& watch) { return !watch->active; });
  const auto watches = watches_;
  std::vector<pollfd> descriptors;
  descriptors.reserve(watches.size() + 1);
  descriptors.push_back({wakePipe_[0], POLLIN, 0});
  for (const auto& watch : watches) descriptors.push_back({watch->descriptor, POLLIN, 0});

  int timeout = -1;
  if (const auto due = nextDue(until); due != TimePoint::max()) {
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(due - now()).count();
    timeout = static_cast<int>(std::clamp<long long>(wait, 0, std::numeric_limits<int>::max()));
  }
  if (::poll(descriptors.data(), descriptors.size(), timeout) <= 0) return;

  if (descriptors[0].revents != 0) {
    const std::lock_guard lock(mutex_);
    woken_ = false;
    std::array<char, 16> bytes{};
    while (::read(wakePipe_[0], bytes.data(), bytes.size()) > 0) continue;
  }
  for (std::size_t i = 0; i < watches.size(); ++i) {
    // Errors and hang-ups count as readable: reading is how their owner finds out.
    if (descriptors[i + 1].revents != 0 && watches[i]->active) watches[i]->ready();
  }
}

}  // namespace tessaspaces
