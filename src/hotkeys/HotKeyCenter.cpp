#include "hotkeys/HotKeyCenter.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

#include "base/Fatal.h"
#include "platform/Platform.h"
#include "settings/Log.h"

namespace tessaspaces {
namespace {

/// "PSTR", which tells this program's hot keys from others in the same event stream.
constexpr std::uint32_t signature = 0x50535452;
/// Nobody lets a key go and presses it again in less.
constexpr auto heldInterval = std::chrono::milliseconds(15);

}  // namespace

HotKeyCenter& HotKeyCenter::shared() {
  static HotKeyCenter instance;
  return instance;
}

void HotKeyCenter::installHandler() {
  if (handlerInstalled_ == &platform()) return;
  platform().hotKeys().setPressHandler([this](HotKeyID pressed) {
    if (pressed.signature != signature) return;
    platform().dispatch().async([this, id = pressed.id] {
      const auto found = entries_.find(id);
      if (found != entries_.end() && held_ == found->second.combo) return;
      fire(id);
    });
  });
  handlerInstalled_ = &platform();
}

bool HotKeyCenter::registerHotKey(KeyCombo combo, const std::string& label, std::function<void()> action) {
  if (combo.isEmpty()) return false;
  installHandler();
  const auto registration = platform().hotKeys().registerHotKey(combo, {signature, nextID_});
  if (registration.status != HotKeyRegistrar::noError || !registration.handle) {
    Log::error("HOTKEY: registration '{}' ({}) FAILED, status={}", label, combo.display(), registration.status);
    failures_.push_back({combo, label, registration.status});
    return false;
  }
  entries_[nextID_] = {combo, std::move(action)};
  refs_.push_back(*registration.handle);
  if (nextID_ == std::numeric_limits<std::uint32_t>::max()) fatal("hot-key ids are used up");
  ++nextID_;
  return true;
}

void HotKeyCenter::unregisterAll() {
  for (const HotKeyHandle ref : refs_) platform().hotKeys().unregisterHotKey(ref);
  refs_.clear();
  entries_.clear();
  failures_.clear();
}

void HotKeyCenter::fire(std::uint32_t id) {
  const auto found = entries_.find(id);
  if (found == entries_.end()) return;
  // A copy, since an action may register the set anew and so take itself away.
  const auto action = found->second.action;
  action();
}

bool HotKeyCenter::press(KeyCombo combo) {
  const auto found =
      std::find_if(entries_.begin(), entries_.end(), [&](const auto& entry) { return entry.second.combo == combo; });
  if (found == entries_.end()) return false;
  const bool watched = held_.has_value();
  held_ = combo;
  if (!watched) watchHeld();
  fire(found->first);
  return true;
}

void HotKeyCenter::watchHeld() {
  platform().dispatch().after(heldInterval, [this] {
    if (held_ && platform().hotKeys().isHeld(*held_)) return watchHeld();
    held_.reset();
  });
}

}  // namespace tessaspaces
