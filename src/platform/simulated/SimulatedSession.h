#pragma once

#include <map>
#include <mutex>

#include "platform/Session.h"
#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

/// Preferences that a test or a demo writes.
class SimulatedPreferences final : public Preferences {
 public:
  std::optional<PreferenceValue> legacyValue(std::string_view key) override;
  std::vector<std::string> preferredLanguages() override;
  bool naturalScrolling() override;
  bool reduceMotion() override;

  void setLegacyValue(std::string key, PreferenceValue value);
  void setPreferredLanguages(std::vector<std::string> tags);
  void setNaturalScrolling(bool natural);
  void setReduceMotion(bool reduce);

 private:
  std::mutex lock_;  // guards all below
  std::map<std::string, PreferenceValue, std::less<>> legacy_;
  std::vector<std::string> languages_{"en"};
  bool naturalScrolling_ = true;
  bool reduceMotion_ = false;
};

/// A login item in memory; SimulatedFaults::loginItemFailure makes changing it fail.
class SimulatedLoginItem final : public LoginItem {
 public:
  explicit SimulatedLoginItem(SimulatedWorld& world) : world_(world) {}
  bool isRegistered() override;
  std::optional<std::string> setRegistered(bool registered) override;

 private:
  SimulatedWorld& world_;
  std::mutex lock_;  // guards registered_
  bool registered_ = false;
};

/// Permissions that nobody has to grant unless a test takes them away.
class SimulatedPermissions final : public Permissions {
 public:
  explicit SimulatedPermissions(SimulatedWorld& world) : world_(world) {}
  bool hasAccessibility() override;
  bool hasScreenRecording() override;
  /// Logged, and without effect.
  void request(bool openSettings) override;

  void set(bool accessibility, bool screenRecording);

 private:
  SimulatedWorld& world_;
  std::mutex lock_;  // guards both
  bool accessibility_ = true;
  bool screenRecording_ = true;
};

}  // namespace tessaspaces
