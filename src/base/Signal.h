#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tessaspaces {

/// Keeps one observer attached for as long as it lives; may outlive the signal. Move-only.
class ScopedConnection {
 public:
  ScopedConnection() = default;
  explicit ScopedConnection(std::function<void()> disconnect) : disconnect_(std::move(disconnect)) {}
  ScopedConnection(ScopedConnection&& other) noexcept : disconnect_(std::exchange(other.disconnect_, {})) {}
  ScopedConnection& operator=(ScopedConnection&& other) noexcept {
    if (this != &other) {
      reset();
      disconnect_ = std::exchange(other.disconnect_, {});
    }
    return *this;
  }
  ScopedConnection(const ScopedConnection&) = delete;
  ScopedConnection& operator=(const ScopedConnection&) = delete;
  ~ScopedConnection() { reset(); }

  void reset() {
    if (auto disconnect = std::exchange(disconnect_, {})) disconnect();
  }

 private:
  std::function<void()> disconnect_;
};

/// A list of observers told of an event in the order in which they connected. One thread only, the one
/// that emits (the main thread wherever the program uses it). Observers may connect and disconnect,
/// themselves included, while the signal is being emitted: one that is gone is not called any more, one
/// that is new is called from the next time on.
template <class... Args>
class Signal {
 public:
  [[nodiscard]] ScopedConnection connect(std::function<void(Args...)> observer) {
    auto slot = std::make_shared<Slot>(Slot{std::move(observer), true});
    slots_->push_back(slot);
    return ScopedConnection([slots = std::weak_ptr(slots_), slot] {
      slot->connected = false;
      if (auto list = slots.lock()) std::erase(*list, slot);
    });
  }

  void emit(Args... args) const {
    const auto observers = *slots_;
    for (const auto& slot : observers) {
      if (slot->connected) slot->observer(args...);
    }
  }

 private:
  struct Slot {
    std::function<void(Args...)> observer;
    bool connected;
  };
  std::shared_ptr<std::vector<std::shared_ptr<Slot>>> slots_ = std::make_shared<std::vector<std::shared_ptr<Slot>>>();
};

}  // namespace tessaspaces
