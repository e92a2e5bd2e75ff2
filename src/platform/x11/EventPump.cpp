#include "platform/x11/EventPump.h"

#include <xcb/xproto.h>

#include <utility>

namespace tessaspaces {
namespace {

// Clients can send events faster than they are dealt with: timers and the work that keys have queued get their
// turn in between. More than the start or the end of a session brings.
constexpr int eventsPerDrain = 500;
constexpr int passesPerDrain = 10;

// The server's time of the events that carry one.
xcb_timestamp_t timeOf(const xcb_generic_event_t& event) {
  switch (eventType(event)) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE: return eventAs<xcb_key_press_event_t>(event).time;
    case XCB_PROPERTY_NOTIFY: return eventAs<xcb_property_notify_event_t>(event).time;
    case XCB_SELECTION_CLEAR: return eventAs<xcb_selection_clear_event_t>(event).time;
    default: return XCB_CURRENT_TIME;
  }
}

}  // namespace

void EventPump::start() {
  watch_ = dispatch_.watch(xcb_get_file_descriptor(connection_.events().get()), [this] { drain(); });
  watching_ = true;
  // What came while the platform was being set up is inside xcb already.
  drainLater();
}

void EventPump::stop() {
  watching_ = false;
  watch_.reset();
}

void EventPump::drain() {
  auto& channel = connection_.events();
  int events = eventsPerDrain;
  int passes = passesPerDrain;
  bool any = true;
  while (any) {
    any = !std::exchange(begun_, true);
    // Before the last look: writing also reads, into a queue that the descriptor does not show.
    channel.flush();
    while (events > 0) {
      const EventRef event = next();
      if (!event) break;
      any = true;
      --events;
      dispatchEvent(*event);
    }
    // Listeners may wait for replies here, which can queue more events.
    if (any) {
      for (auto* listener : listeners_) listener->eventsDrained();
    }
    if (events == 0 || --passes == 0) {
      drainLater();
      break;
    }
  }
  if (channel.broken()) {
    stop();  // a closed descriptor stays readable for ever
    channel.checkConnection();
  }
}

void EventPump::flush() {
  connection_.events().flush();
  drainLater();
}

EventRef EventPump::next() {
  if (foreseen_.empty()) return EventRef(xcb_poll_for_event(connection_.events().get()));
  auto event = std::move(foreseen_.front());
  foreseen_.pop_front();
  return event;
}

void EventPump::lookAhead() {
  const auto before = foreseen_.size();
  while (EventRef event{xcb_poll_for_event(connection_.events().get())}) {
    if (isSynthetic(*event)) continue;
    for (auto* listener : listeners_) listener->foresee(*event);
    foreseen_.push_back(std::move(event));
  }
  if (foreseen_.size() > before) drainLater();
}

void EventPump::drainLater() {
  if (drainPending_ || !watching()) return;
  drainPending_ = true;
  later([this] {
    drainPending_ = false;
    if (watching()) drain();
  });
}

void EventPump::later(std::function<void()> work) {
  dispatch_.async(guarded(std::move(work)));
}

void EventPump::after(Duration delay, std::function<void()> work) {
  dispatch_.after(delay, guarded(std::move(work)));
}

std::function<void()> EventPump::guarded(std::function<void()> work) const {
  return [weak = std::weak_ptr(alive_), work = std::move(work)] {
    if (weak.lock()) work();
  };
}

void EventPump::dispatchEvent(const xcb_generic_event_t& event) {
  if (event.response_type == 0) {
    handleError(reinterpret_cast<const xcb_generic_error_t&>(event), connection_.extensions());
    return;
  }
  if (isSynthetic(event)) return;
  connection_.noteTime(timeOf(event));
  for (auto* listener : listeners_) listener->handle(event);
}

}  // namespace tessaspaces
