#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <thread>
#include <utility>

#include "platform/Dispatch.h"

namespace tessaspaces {

/// A Dispatch whose clock stands still until somebody moves it: `advance` and `runUntilIdle` turn the event
/// loop, `sleep` moves the clock for the code that calls it. Nothing ever waits, and the same calls always
/// give the same order: what is due runs by time, then by the order in which it was queued.
///
/// Single-threaded: everything runs on the thread that made it, and a call from any other thread is a fatal
/// stop. Background jobs run there too, one inside the other's sleep, with isMainThread() false. A test that
/// wants real threads gives SimulatedPlatform a RunLoop instead.
///
/// While code sleeps, the rest of the program goes on as it would beside it:
/// - a sleeping background job lets main-queue work, timers, other jobs and outside events run at their times;
/// - sleeping main-thread code lets jobs and outside events run, but no main-queue work;
/// - a job that is started inside another's sleep runs to its end before the other wakes, so the other may
///   wake later than it asked, never earlier.
class VirtualDispatch final : public Dispatch {
 public:
  VirtualDispatch() = default;
  VirtualDispatch(const VirtualDispatch&) = delete;
  VirtualDispatch& operator=(const VirtualDispatch&) = delete;

  void async(std::function<void()> work) override;
  /// From a background job: runs the main-queue work that is already due, then `work`, in the caller's stack.
  /// (Where main-thread code further down the stack sleeps, `work` runs at once; a real one would wait.)
  void sync(std::function<void()> work) override;
  void after(Duration delay, std::function<void()> work) override;
  /// Ticks that fell due together, because somebody slept across them, come as one.
  [[nodiscard]] RegistrationRef every(Duration interval, std::function<void()> tick) override;
  /// There are no descriptors in virtual time: a fatal stop.
  [[nodiscard]] RegistrationRef watch(int descriptor, std::function<void()> ready) override;
  void background(std::function<void()> work) override;
  [[nodiscard]] bool isMainThread() const override;
  /// Starts at zero.
  [[nodiscard]] TimePoint now() const override { return now_; }
  void sleep(Duration duration) override;

  /// Something outside this program happens once `delay` has passed: it runs at its time whoever sleeps.
  void outside(Duration delay, std::function<void()> happening);

  /// Turns the event loop for `duration` of virtual time, running all that falls due; the clock then stands
  /// at the end, or later when a background job slept beyond it. Main thread; may be nested.
  void advance(Duration duration);
  /// Turns the event loop, moving the clock as far as needed, until nothing is queued any more but repeating
  /// timers. A program that queues new work for ever never gets idle: a fatal stop after a million steps.
  void runUntilIdle();
  /// Whether nothing but repeating timers is queued.
  [[nodiscard]] bool isIdle() const;

 private:
  enum class Lane { main, background, outside };
  enum class Persistence { once, repeating };
  struct Item {
    Lane lane = Lane::main;
    Persistence persistence = Persistence::once;
    std::function<void()> work;
  };
  using Key = std::pair<TimePoint, std::uint64_t>;  // when due, then in the order of the calls
  using Queue = std::map<Key, Item>;
  struct Ticker;
  class TickerRegistration;

  void enqueue(TimePoint due, Item item);
  void scheduleTick(TimePoint due, const std::shared_ptr<Ticker>& ticker);
  /// The first item due by `limit` that may run now.
  Queue::iterator nextDue(TimePoint limit);
  void run(Queue::iterator position);
  void runAs(Lane lane, const std::function<void()>& work);
  void checkThread() const;
  void checkLoopMayTurn() const;

  const std::thread::id thread_ = std::this_thread::get_id();
  TimePoint now_{};
  std::uint64_t sequence_ = 0;
  Queue queue_;
  Lane running_ = Lane::main;
  /// How many frames of main-thread code are asleep further down the stack.
  int sleepingMainFrames_ = 0;
};

}  // namespace tessaspaces
