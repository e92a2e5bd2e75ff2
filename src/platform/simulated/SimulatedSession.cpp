#include "platform/simulated/SimulatedSession.h"

namespace tessaspaces {

std::optional<PreferenceValue> SimulatedPreferences::legacyValue(std::string_view key) {
  const std::lock_guard guard(lock_);
  const auto found = legacy_.find(key);
  return found == legacy_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<std::string> SimulatedPreferences::preferredLanguages() {
  const std::lock_guard guard(lock_);
  return languages_;
}

bool SimulatedPreferences::naturalScrolling() {
  const std::lock_guard guard(lock_);
  return naturalScrolling_;
}

bool SimulatedPreferences::reduceMotion() {
  const std::lock_guard guard(lock_);
  return reduceMotion_;
}

void SimulatedPreferences::setReduceMotion(bool reduce) {
  const std::lock_guard guard(lock_);
  reduceMotion_ = reduce;
}

void SimulatedPreferences::setNaturalScrolling(bool natural) {
  const std::lock_guard guard(lock_);
  naturalScrolling_ = natural;
}

void SimulatedPreferences::setLegacyValue(std::string key, PreferenceValue value) {
  const std::lock_guard guard(lock_);
  legacy_[std::move(key)] = std::move(value);
}

void SimulatedPreferences::setPreferredLanguages(std::vector<std::string> tags) {
  const std::lock_guard guard(lock_);
  languages_ = std::move(tags);
}

bool SimulatedLoginItem::isRegistered() {
  const std::lock_guard guard(lock_);
  return registered_;
}

std::optional<std::string> SimulatedLoginItem::setRegistered(bool registered) {
  world_.ask(Operation::setLoginItem, registered ? "true" : "false");
  if (auto failure = world_.faults().loginItemFailure) return failure;
  const std::lock_guard guard(lock_);
  registered_ = registered;
  return std::nullopt;
}

bool SimulatedPermissions::hasAccessibility() {
  const std::lock_guard guard(lock_);
  return accessibility_;
}

bool SimulatedPermissions::hasScreenRecording() {
  const std::lock_guard guard(lock_);
  return screenRecording_;
}

void SimulatedPermissions::request(bool openSettings) {
  world_.ask(Operation::requestPermission, openSettings ? "openSettings" : "");
}

void SimulatedPermissions::set(bool accessibility, bool screenRecording) {
  const std::lock_guard guard(lock_);
  accessibility_ = accessibility;
  screenRecording_ = screenRecording;
}

}  // namespace tessaspaces
