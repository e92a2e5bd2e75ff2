#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "platform/Dispatch.h"
#include "platform/x11/Connection.h"

namespace tessaspaces {

/// A part of the platform that follows events. Main thread.
class EventListener {
 public:
  virtual ~EventListener() = default;
  virtual void handle(const xcb_generic_event_t& event) = 0;
  /// The event has arrived and will be handled in its turn; something may be out of date from now on.
  virtual void foresee(const xcb_generic_event_t& /*event*/) {}
  /// The queue is empty for now, or long: the time to act once on many events.
  virtual void eventsDrained() {}
};

/// Brings the events of the event connection to the listeners, in the server's order, without those that other
/// clients made up. Main thread.
class EventPump {
 public:
  EventPump(Connection& connection, Dispatch& dispatch) : connection_(connection), dispatch_(dispatch) {}

  /// Called for each event in the order of the calls. Before `start`.
  void add(EventListener& listener) { listeners_.push_back(&listener); }
  /// Begins to watch the connection. Listeners get one eventsDrained soon even without events.
  void start();
  /// Lets the watch go for good; a drain that is queued does nothing.
  void stop();
  /// Any thread. False without a watch: then nothing may be cached that events would have to keep right.
  [[nodiscard]] bool watching() const { return watching_.load(std::memory_order_relaxed); }
  /// Takes everything off the queue now; of very much the rest soon.
  void drain();
  /// Has the listeners foresee what has arrived, without handling it yet.
  void lookAhead();
  /// Drains soon. After a round trip on the event connection: it may have queued events inside xcb, which
  /// the watched descriptor does not show.
  void drainLater();
  /// Sends what the event connection has not sent yet, which may queue events in the same way.
  void flush();
  /// Runs `work` behind what the main queue holds, or once `delay` has passed; not after this object's end.
  void later(std::function<void()> work);
  void after(Duration delay, std::function<void()> work);
  /// On the clock by which `after` waits.
  [[nodiscard]] TimePoint now() const { return dispatch_.now(); }

 private:
  [[nodiscard]] std::function<void()> guarded(std::function<void()> work) const;
  EventRef next();
  void dispatchEvent(const xcb_generic_event_t& event);

  Connection& connection_;
  Dispatch& dispatch_;
  std::vector<EventListener*> listeners_;
  std::deque<EventRef> foreseen_;
  RegistrationRef watch_;
  std::atomic<bool> watching_ = false;
  bool drainPending_ = false;
  bool begun_ = false;                                     // listeners have been told once that the queue is empty
  std::shared_ptr<int> alive_ = std::make_shared<int>(0);  // queued work may outlive this
};

}  // namespace tessaspaces
