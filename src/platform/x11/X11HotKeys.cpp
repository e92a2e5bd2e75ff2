#include "platform/x11/X11HotKeys.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "base/Report.h"
#include "platform/x11/Xkb.h"

namespace tessaspaces {
namespace {

constexpr std::uint16_t allModifierBits = 0xff;
constexpr auto ungrabDelay = std::chrono::milliseconds(5);

}  // namespace

X11HotKeys::~X11HotKeys() {
  for (const auto& [handle, hotKey] : registered_) ungrab(hotKey.keys);
  pump_.flush();
}

HotKeyRegistration X11HotKeys::registerHotKey(KeyCombo combo, HotKeyID id) {
  prepare();
  auto keys = keysOf(combo);
  if (keys.empty()) return {XCB_VALUE, std::nullopt};
  // The server lets a client take a key twice; here the first registration keeps it.
  if (isTaken(keys)) return {XCB_ACCESS, std::nullopt};
  const auto error = grab(keys);
  pump_.drainLater();
  if (error != 0) return {error, std::nullopt};
  const auto handle = nextHandle_++;
  registered_.emplace(handle, Registered{combo, id, std::move(keys)});
  return {noError, handle};
}

void X11HotKeys::unregisterHotKey(HotKeyHandle handle) {
  const auto found = registered_.find(handle);
  if (found == registered_.end()) return;
  ungrab(found->second.keys);
  pump_.flush();
  registered_.erase(found);
}

void X11HotKeys::letGoOfKeyboard() {
  auto& channel = connection_.events();
  channel.send<xcb_ungrab_keyboard>(xcb_timestamp_t{XCB_CURRENT_TIME});
  // Another connection's request may overtake this one unless it is known to be carried out.
  channel.await<xcb_get_input_focus_reply>(channel.send<xcb_get_input_focus>());
  pump_.drainLater();
}

bool X11HotKeys::isHeld(KeyCombo combo) {
  prepare();
  auto& channel = connection_.events();
  const auto keymap = channel.await<xcb_query_keymap_reply>(channel.send<xcb_query_keymap>());
  pump_.drainLater();
  if (!keymap) return false;
  const auto keys = keysOf(combo);
  return std::any_of(keys.begin(), keys.end(),
                     [&](const Key& key) { return (keymap->keys[key.keycode / 8] & 1U << key.keycode % 8) != 0; });
}

void X11HotKeys::handle(const xcb_generic_event_t& event) {
  switch (eventType(event)) {
    case XCB_KEY_PRESS: pressed(eventAs<xcb_key_press_event_t>(event)); break;
    case XCB_MAPPING_NOTIFY:
      if (eventAs<xcb_mapping_notify_event_t>(event).request != XCB_MAPPING_POINTER) mapStale_ = true;
      break;
    default:
      // Of XKB's events only those that tell of a changed mapping were asked for; they share one code.
      if (connection_.extensions().xkb != 0 && eventType(event) == connection_.extensions().xkbEvent) mapStale_ = true;
      break;
  }
}

void X11HotKeys::eventsDrained() {
  // A change of layout comes as a burst of notices.
  if (std::exchange(mapStale_, false) && prepared_) grabAgain(KeyboardMap::read(connection_.events()));
}

void X11HotKeys::prepare() {
  if (prepared_) return;
  prepared_ = true;
  auto& channel = connection_.events();
  if (connection_.extensions().xkb != 0) {
    // Without this the server may fold a second keyboard layout into the modifiers that grabs are compared
    // with, and hot keys would work in the first layout alone.
    constexpr std::uint32_t grabsUseXkbState = XCB_XKB_PER_CLIENT_FLAG_GRABS_USE_XKB_STATE;
    const auto use =
        channel.send<xcb_xkb_use_extension>(std::uint16_t{XCB_XKB_MAJOR_VERSION}, std::uint16_t{XCB_XKB_MINOR_VERSION});
    const auto flags = channel.send<xcb_xkb_per_client_flags>(
        static_cast<xcb_xkb_device_spec_t>(XCB_XKB_ID_USE_CORE_KBD), grabsUseXkbState, grabsUseXkbState, 0U, 0U, 0U);
    channel.await<xcb_xkb_use_extension_reply>(use);
    channel.await<xcb_xkb_per_client_flags_reply>(flags);
    // The server no longer tells a client that knows XKB about the mapping unless it asks.
    constexpr std::uint16_t mapParts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    constexpr std::uint16_t notices = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    channel.send<xcb_xkb_select_events>(static_cast<xcb_xkb_device_spec_t>(XCB_XKB_ID_USE_CORE_KBD), notices,
                                        std::uint16_t{0}, notices, mapParts, mapParts, nullptr);
  }
  adopt(KeyboardMap::read(channel));
}

void X11HotKeys::adopt(KeyboardMap map) {
  map_ = std::move(map);
  lockVariants_ = {0};
  significant_ = allModifierBits;
  for (const auto bit : map_.lockBits()) {
    significant_ &= static_cast<std::uint16_t>(~bit);
    const auto without = lockVariants_;
    for (const auto variant : without) lockVariants_.push_back(variant | bit);
  }
}

std::vector<X11HotKeys::Key> X11HotKeys::keysOf(KeyCombo combo) const {
  std::vector<Key> keys;
  if (combo.isEmpty()) return keys;
  const auto bits = map_.modifierBits(combo.modifiers);
  // Bits that are no modifiers do not make a bare key ours.
  if (bits == 0) return keys;
  for (const auto keycode : map_.keycodesOf(combo.keyCode)) keys.push_back({keycode, bits});
  return keys;
}

bool X11HotKeys::isTaken(const std::vector<Key>& keys) const {
  return std::any_of(registered_.begin(), registered_.end(), [&](const auto& entry) {
    const auto& held = entry.second.keys;
    return std::find_first_of(held.begin(), held.end(), keys.begin(), keys.end()) != held.end();
  });
}

std::uint8_t X11HotKeys::grab(const std::vector<Key>& keys) {
  auto& channel = connection_.events();
  struct Attempt {
    Key key;
    xcb_void_cookie_t cookie;
    bool held = false;
  };
  std::vector<Attempt> attempts;
  for (const auto& key : keys) {
    for (const auto locks : lockVariants_) {
      const Key variant{key.keycode, static_cast<std::uint16_t>(key.modifiers | locks)};
      const auto cookie =
          channel.send<xcb_grab_key_checked>(std::uint8_t{0}, connection_.root(), variant.modifiers, variant.keycode,
                                             std::uint8_t{XCB_GRAB_MODE_ASYNC}, std::uint8_t{XCB_GRAB_MODE_ASYNC});
      attempts.push_back({variant, cookie});
    }
  }
  std::uint8_t failure = 0;
  for (auto& attempt : attempts) {
    const auto error = channel.check(attempt.cookie);
    attempt.held = !error;
    if (error && failure == 0) failure = error->error_code;
  }
  if (failure != 0) {
    for (const auto& attempt : attempts) {
      if (attempt.held) channel.send<xcb_ungrab_key>(attempt.key.keycode, connection_.root(), attempt.key.modifiers);
    }
    pump_.flush();
  }
  return failure;
}

void X11HotKeys::ungrab(const std::vector<Key>& keys) {
  for (const auto& key : keys) {
    for (const auto locks : lockVariants_) {
      connection_.events().send<xcb_ungrab_key>(key.keycode, connection_.root(),
                                                static_cast<std::uint16_t>(key.modifiers | locks));
    }
  }
}

void X11HotKeys::grabAgain(KeyboardMap map) {
  if (map == map_) return;  // tools that type text remap a spare key and put it back
  for (auto& [handle, hotKey] : registered_) {
    ungrab(hotKey.keys);
    hotKey.keys.clear();
  }
  adopt(std::move(map));
  bool lost = false;
  for (auto& [handle, hotKey] : registered_) {
    auto keys = keysOf(hotKey.combo);
    // Two combos can end up on one key; the one registered first keeps it.
    const std::uint8_t error = keys.empty() ? XCB_VALUE : isTaken(keys) ? XCB_ACCESS : grab(keys);
    if (error == 0) {
      hotKey.keys = std::move(keys);
    } else {
      lost = true;
      report(ReportLevel::error, fmt::format("HOTKEY: {} is lost after a change of the keyboard, status={}",
                                             hotKey.combo.display(), error));
    }
  }
  // The observers register and unregister, which this must not be in the middle of.
  if (lost) pump_.later([this] { combosLost.emit(); });
}

void X11HotKeys::pressed(const xcb_key_press_event_t& event) {
  const Key key{event.detail, static_cast<std::uint16_t>(event.state & significant_)};
  const auto pressed = std::find_if(registered_.begin(), registered_.end(), [&](const auto& entry) {
    const auto& keys = entry.second.keys;
    return std::find(keys.begin(), keys.end(), key) != keys.end();
  });
  if (pressed != registered_.end()) {
    const auto id = pressed->second.id;  // the handler may unregister
    // Around what the handler queues, for which another press may already be waiting in the same burst.
    pump_.later([this, at = PixelPoint{event.root_x, event.root_y}] { screens_.setPressPosition(at); });
    if (handler_) handler_(id);
  }
  // The passive grab has become a grab of the whole keyboard, which would last until the key is released
  // and keep the overview from taking the keyboard itself. Not now: everybody hears of a grab's end, and the
  // window manager would be busy with that when the switch arrives.
  pump_.later([this, time = event.time] {
    screens_.setPressPosition(std::nullopt);
    pump_.after(ungrabDelay, [this, time] {
      connection_.events().send<xcb_ungrab_keyboard>(time);
      pump_.flush();
    });
  });
}

}  // namespace tessaspaces
