#pragma once

#include <atomic>

namespace tessaspaces {

/// The turn of whoever moves the pointer, of which there is one: two at work at once would pull it out of each other's
/// hands. Nobody waits for it, since what it was wanted for would be out of date by then. Any thread; also twice by the
/// same one, which is refused.
class OneHand {
 public:
  OneHand() = default;
  ~OneHand() {
    if (taken_) busy = false;
  }
  OneHand(const OneHand&) = delete;
  OneHand& operator=(const OneHand&) = delete;

  /// Takes the turn until this goes; false when somebody else has it. True again once it is taken.
  bool take() {
    bool free = false;
    if (!taken_) taken_ = busy.compare_exchange_strong(free, true);
    return taken_;
  }

 private:
  inline static std::atomic<bool> busy = false;
  bool taken_ = false;
};

}  // namespace tessaspaces
