#include "platform/simulated/VirtualDispatch.h"

#include <algorithm>

#include "base/Fatal.h"

namespace tessaspaces {

namespace {

template <class Value>
class Restored {
 public:
  Restored(Value& place, Value value) : place_(place), old_(std::exchange(place, value)) {}
  ~Restored() { place_ = old_; }
  Restored(const Restored&) = delete;
  Restored& operator=(const Restored&) = delete;

 private:
  Value& place_;
  Value old_;
};

}  // namespace

struct VirtualDispatch::Ticker {
  Duration interval;
  std::function<void()> tick;
  bool stopped = false;
};

class VirtualDispatch::TickerRegistration final : public Registration {
 public:
  explicit TickerRegistration(std::shared_ptr<Ticker> ticker) : ticker_(std::move(ticker)) {}
  ~TickerRegistration() override { ticker_->stopped = true; }

 private:
  std::shared_ptr<Ticker> ticker_;
};

void VirtualDispatch::async(std::function<void()> work) {
  enqueue(now_, {Lane::main, Persistence::once, std::move(work)});
}

void VirtualDispatch::after(Duration delay, std::function<void()> work) {
  enqueue(now_ + delay, {Lane::main, Persistence::once, std::move(work)});
}

void VirtualDispatch::background(std::function<void()> work) {
  enqueue(now_, {Lane::background, Persistence::once, std::move(work)});
}

void VirtualDispatch::outside(Duration delay, std::function<void()> happening) {
  enqueue(now_ + delay, {Lane::outside, Persistence::once, std::move(happening)});
}

void VirtualDispatch::sync(std::function<void()> work) {
  checkThread();
  if (!isMainThread() && sleepingMainFrames_ == 0) {
    // What was handed over before comes first, as in any queue.
    const auto queuedBefore = sequence_;
    const auto isEarlierMainWork = [&](const auto& entry) {
      return entry.second.lane == Lane::main && entry.first.first <= now_ && entry.first.second < queuedBefore;
    };
    for (;;) {
      const auto position = std::find_if(queue_.begin(), queue_.end(), isEarlierMainWork);
      if (position == queue_.end()) break;
      run(position);
    }
  }
  runAs(Lane::main, work);
}

RegistrationRef VirtualDispatch::every(Duration interval, std::function<void()> tick) {
  if (interval <= Duration::zero()) fatal("a repeating timer needs an interval");
  auto ticker = std::make_shared<Ticker>(Ticker{interval, std::move(tick)});
  scheduleTick(now_ + interval, ticker);
  return std::make_unique<TickerRegistration>(std::move(ticker));
}

void VirtualDispatch::scheduleTick(TimePoint due, const std::shared_ptr<Ticker>& ticker) {
  enqueue(due, {Lane::main, Persistence::repeating, [this, due, ticker] {
                  if (ticker->stopped) return;
                  ticker->tick();
                  if (ticker->stopped) return;
                  auto next = due + ticker->interval;
                  if (next <= now_) next += (now_ - next) / ticker->interval * ticker->interval + ticker->interval;
                  scheduleTick(next, ticker);
                }});
}

RegistrationRef VirtualDispatch::watch(int, std::function<void()>) {
  fatal("virtual time cannot watch a descriptor; use a RunLoop");
}

bool VirtualDispatch::isMainThread() const {
  return running_ == Lane::main && std::this_thread::get_id() == thread_;
}

void VirtualDispatch::sleep(Duration duration) {
  checkThread();
  const auto end = now_ + std::max(duration, Duration::zero());
  const Restored asleep(sleepingMainFrames_, sleepingMainFrames_ + (running_ == Lane::main ? 1 : 0));
  for (auto position = nextDue(end); position != queue_.end(); position = nextDue(end)) run(position);
  now_ = std::max(now_, end);
}

void VirtualDispatch::advance(Duration duration) {
  checkLoopMayTurn();
  const auto end = now_ + std::max(duration, Duration::zero());
  const Restored awake(sleepingMainFrames_, 0);
  for (auto position = nextDue(end); position != queue_.end(); position = nextDue(end)) run(position);
  now_ = std::max(now_, end);
}

void VirtualDispatch::runUntilIdle() {
  checkLoopMayTurn();
  const Restored awake(sleepingMainFrames_, 0);
  for (int steps = 0; !isIdle(); ++steps) {
    if (steps == 1'000'000) fatal("the simulated program never gets idle");
    run(queue_.begin());
  }
}

bool VirtualDispatch::isIdle() const {
  return std::all_of(queue_.begin(), queue_.end(),
                     [](const auto& entry) { return entry.second.persistence == Persistence::repeating; });
}

void VirtualDispatch::enqueue(TimePoint due, Item item) {
  checkThread();
  queue_.emplace(Key{std::max(due, now_), sequence_++}, std::move(item));
}

VirtualDispatch::Queue::iterator VirtualDispatch::nextDue(TimePoint limit) {
  const auto position = std::find_if(queue_.begin(), queue_.end(), [this](const auto& entry) {
    return entry.second.lane != Lane::main || sleepingMainFrames_ == 0;
  });
  return position != queue_.end() && position->first.first <= limit ? position : queue_.end();
}

void VirtualDispatch::run(Queue::iterator position) {
  now_ = std::max(now_, position->first.first);
  const auto item = queue_.extract(position);
  runAs(item.mapped().lane, item.mapped().work);
}

void VirtualDispatch::runAs(Lane lane, const std::function<void()>& work) {
  const Restored running(running_, lane);
  work();
}

void VirtualDispatch::checkThread() const {
  if (std::this_thread::get_id() != thread_) fatal("virtual time belongs to the thread that made it");
}

void VirtualDispatch::checkLoopMayTurn() const {
  checkThread();
  if (running_ != Lane::main) fatal("only main-thread code turns the event loop");
}

}  // namespace tessaspaces
