#include "ui/x11/HeldKeys.h"

namespace tessaspaces {

void HeldKeys::begin(std::span<const std::uint8_t> down) {
  held_ = {};
  for (std::size_t keycode = 0; keycode < held_.size() && keycode / 8 < down.size(); ++keycode) {
    held_.at(keycode).down = (down[keycode / 8] >> (keycode % 8) & 1) != 0;
  }
}

bool HeldKeys::swallowsPress(std::uint8_t keycode, std::uint32_t time) {
  Key& key = held_.at(keycode);
  if (!key.down) return false;
  // Without a release before it, or with one of the same moment, it is the server that repeats the key.
  if (!key.released || *key.released == time) return true;
  key = {};
  return false;
}

bool HeldKeys::swallowsRelease(std::uint8_t keycode, std::uint32_t time) {
  Key& key = held_.at(keycode);
  if (!key.down) return false;
  key.released = time;
  return true;
}

}  // namespace tessaspaces
