#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace tessaspaces {

/// A point on a monotonic clock of the platform's own; on the simulated platform it is virtual time.
using TimePoint = std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds>;
using Duration = std::chrono::nanoseconds;

/// Keeps a timer or a descriptor watch alive; letting it go stops the callbacks. Let go on the main thread.
class Registration {
 public:
  virtual ~Registration() = default;
};
using RegistrationRef = std::unique_ptr<Registration>;

/// What the core needs of an event loop: work on the main thread, work off it, time. Everything that
/// waits in the program waits through here, so that tests run it in virtual time.
class Dispatch {
 public:
  virtual ~Dispatch() = default;

  /// Runs `work` on the main thread, later, in the order of the calls. Any thread.
  virtual void async(std::function<void()> work) = 0;
  /// Runs `work` on the main thread and returns when it is done; on the main thread runs it at once.
  virtual void sync(std::function<void()> work) = 0;
  /// Runs `work` on the main thread once `delay` has passed. Any thread.
  virtual void after(Duration delay, std::function<void()> work) = 0;
  /// Runs `tick` on the main thread every `interval`, first after one interval. Main thread.
  [[nodiscard]] virtual RegistrationRef every(Duration interval, std::function<void()> tick) = 0;
  /// Runs `ready` on the main thread whenever `descriptor` has something to read. Main thread.
  [[nodiscard]] virtual RegistrationRef watch(int descriptor, std::function<void()> ready) = 0;

  /// Runs `work` off the main thread. Jobs may run beside one another: a switch that waits for a window
  /// manager that does not answer must not hold up the next one. Any thread.
  virtual void background(std::function<void()> work) = 0;

  [[nodiscard]] virtual bool isMainThread() const = 0;
  [[nodiscard]] virtual TimePoint now() const = 0;
  /// Blocks the calling thread. On the simulated platform time just moves on.
  virtual void sleep(Duration duration) = 0;
  /// The program is ending, and sleeps may return at once: whoever waits for something gives up, without taking its
  /// not having happened for a failure. Any thread.
  [[nodiscard]] virtual bool isEnding() const { return false; }
};

}  // namespace tessaspaces
