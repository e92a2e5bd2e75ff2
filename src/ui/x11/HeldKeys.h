#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace tessaspaces {

/// The keys that were down already when the panels got the keyboard, the one that opened them to begin with. What the
/// server goes on to tell of them (repeats, which are a release and a press of one moment, and the release in the end)
/// is not meant for the panels. Times are the server's, in milliseconds.
class HeldKeys {
 public:
  /// `down` has a bit for each keycode, as QueryKeymap answers.
  void begin(std::span<const std::uint8_t> down);
  void end() { held_ = {}; }

  /// Whether an event is to be kept from the panels.
  bool swallowsPress(std::uint8_t keycode, std::uint32_t time);
  bool swallowsRelease(std::uint8_t keycode, std::uint32_t time);

 private:
  struct Key {
    bool down = false;
    std::optional<std::uint32_t> released;
  };
  std::array<Key, 256> held_{};
};

}  // namespace tessaspaces
