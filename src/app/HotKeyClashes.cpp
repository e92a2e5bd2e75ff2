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

/// See HotKeyRegistration::status.
constexpr std::int32_t noSuchKey = 2;

void add(Refused& refused, const HotKeyFailure& failure) {
  (failure.status == noSuchKey ? refused.absent : refused.taken).push_back(failure.combo);
}

/// All refused keys as one text.
std::string summary() {
  std::vector<std::string> keys;
  for (const HotKeyFailure& failure : HotKeyCenter::shared().failures()) keys.push_back(failure.combo.display());
  std::sort(keys.begin(), keys.end());
  std::string all;
  for (const std::string& key : keys) all += (all.empty() ? "" : " ") + key;
  return all;
}

/// Or on no keyboard of the user's, where no modifiers help.
bool isFree(KeyCombo combo) {
  auto& registrar = platform().hotKeys();
  const auto registration = registrar.registerHotKey(combo, probe);
  if (registration.handle) registrar.unregisterHotKey(*registration.handle);
  return registration.status == HotKeyRegistrar::noError || registration.status == noSuchKey;
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
      if (HotKeySet::groupOf(failure.label) == group) add(report.refused, failure);
    }
    all.push_back(std::move(report));
  }
  return all;
}

Refused others() {
  Refused refused;
  for (const HotKeyFailure& failure : HotKeyCenter::shared().failures()) {
    if (!HotKeySet::groupOf(failure.label)) add(refused, failure);
  }
  return refused;
}

bool any() {
  return !HotKeyCenter::shared().failures().empty();
}

bool anyTaken() {
  const auto& failures = HotKeyCenter::shared().failures();
  return std::any_of(failures.begin(), failures.end(),
                     [](const HotKeyFailure& failure) { return failure.status != noSuchKey; });
}

bool anyNew() {
  return any() && summary() != Settings::acceptedClashes();
}

void accept() {
  if (summary() != Settings::acceptedClashes()) Settings::setAcceptedClashes(summary());
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
