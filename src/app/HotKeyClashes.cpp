#include "app/HotKeyClashes.h"

#include <algorithm>
#include <array>

#include "app/HotKeySet.h"
#include "hotkeys/HotKeyCenter.h"
#include "platform/Platform.h"
#include "settings/Settings.h"

namespace tessaspaces::HotKeyClashes {
namespace {

constexpr auto control = KeyCombo::control;
constexpr auto option = KeyCombo::option;
constexpr auto shift = KeyCombo::shift;
constexpr auto command = KeyCombo::command;

/// From the easiest to press to the hardest. Left out is what text fields and browsers use themselves:
/// control or option alone, shift with either.
constexpr std::array candidates{
    control | option,           command,
    control | command,          option | command,
    control | option | shift,   command | shift,
    control | command | shift,  option | command | shift,
    control | option | command, control | option | shift | command,
};

/// Not one of HotKeyCenter's, so that a press in between runs nothing.
constexpr HotKeyID probe{0x50524F42, 1};  // "PROB"

bool isFree(KeyCombo combo) {
  auto& registrar = platform().hotKeys();
  const auto registration = registrar.registerHotKey(combo, probe);
  if (registration.handle) registrar.unregisterHotKey(*registration.handle);
  return registration.status == HotKeyRegistrar::noError;
}

bool usesDigits(HotkeyGroup group) {
  return group == HotkeyGroup::changeSpaceDirect;
}

}  // namespace

std::vector<GroupReport> reports() {
  std::vector<GroupReport> all;
  for (const HotkeyGroup group : allCases<HotkeyGroup>()) {
    GroupReport report{group, Settings::modifiers(group), {}};
    for (const HotKeyFailure& failure : HotKeyCenter::shared().failures()) {
      if (HotKeySet::groupOf(failure.label) == group) report.taken.push_back(failure.combo);
    }
    all.push_back(std::move(report));
  }
  return all;
}

std::vector<KeyCombo> otherTaken() {
  std::vector<KeyCombo> combos;
  for (const HotKeyFailure& failure : HotKeyCenter::shared().failures()) {
    if (!HotKeySet::groupOf(failure.label)) combos.push_back(failure.combo);
  }
  return combos;
}

bool any() {
  return !HotKeyCenter::shared().failures().empty();
}

std::optional<HotkeyGroup> rival(HotkeyGroup group, std::uint32_t modifiers) {
  if (modifiers == 0) return std::nullopt;
  for (const HotkeyGroup other : allCases<HotkeyGroup>()) {
    if (other != group && usesDigits(other) == usesDigits(group) && Settings::modifiers(other) == modifiers) {
      return other;
    }
  }
  return std::nullopt;
}

std::optional<std::uint32_t> freeModifiers(HotkeyGroup group) {
  const std::uint32_t current = Settings::modifiers(group);
  for (const std::uint32_t modifiers : candidates) {
    if (modifiers == current || rival(group, modifiers)) continue;
    const auto combos = HotKeySet::combos(group, modifiers);
    if (std::all_of(combos.begin(), combos.end(), isFree)) return modifiers;
  }
  return std::nullopt;
}

}  // namespace tessaspaces::HotKeyClashes
