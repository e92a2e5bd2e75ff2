#include "platform/x11/Channel.h"

namespace tessaspaces {

void Channel::checkConnection() {
  if (broken() && !lostSeen_.exchange(true) && lost_) lost_();
}

void Channel::waiting(std::uint32_t sequence) {
  // Sequence numbers wrap around, so compare distances.
  if (static_cast<std::int32_t>(sequence - answered_.load(std::memory_order_relaxed)) <= 0) return;
  answered_.store(lastSent_.load(std::memory_order_relaxed), std::memory_order_relaxed);
  roundTrips_.fetch_add(1, std::memory_order_relaxed);
}

void Channel::finished(xcb_generic_error_t* error, bool replied) {
  if (error != nullptr) {
    handleError(*ErrorRef(error), extensions_);
  } else if (!replied) {
    checkConnection();
  }
}

}  // namespace tessaspaces
