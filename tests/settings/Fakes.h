#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "base/Fatal.h"
#include "platform/Platform.h"
#include "settings/ConfigStore.h"
#include "settings/L10n.h"
#include "settings/Log.h"
#include "support/TemporaryFolder.h"

namespace tessaspaces::testing {

namespace fs = std::filesystem;

inline void writeText(const fs::path& file, std::string_view text) {
  std::ofstream(file, std::ios::binary) << text;
}

inline std::string readText(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class FakePreferences : public Preferences {
 public:
  std::map<std::string, PreferenceValue, std::less<>> legacy;
  std::vector<std::string> languages;

  std::optional<PreferenceValue> legacyValue(std::string_view key) override {
    const auto found = legacy.find(key);
    return found != legacy.end() ? std::optional(found->second) : std::nullopt;
  }
  std::vector<std::string> preferredLanguages() override { return languages; }
  bool naturalScrolling() override { return true; }
  bool reduceMotion() override { return false; }
};

class FakeLoginItem : public LoginItem {
 public:
  bool registered = false;
  std::optional<std::string> error;

  bool isRegistered() override { return registered; }
  std::optional<std::string> setRegistered(bool wanted) override {
    if (!error) registered = wanted;
    return error;
  }
};

class FakeScreens : public Screens {
 public:
  ScreenRef main;

  std::vector<ScreenRef> screens() override { return {main}; }
  ScreenRef mainScreen() override { return main; }
  Point pointer() override { return {}; }
};

/// The thread that makes it is the main thread.
class FakeDispatch : public Dispatch {
 public:
  /// Runs what was queued for the main thread; the number of jobs.
  std::size_t run() {
    std::vector<std::function<void()>> work;
    {
      const std::lock_guard guard(lock_);
      work.swap(queue_);
    }
    for (const auto& each : work) each();
    return work.size();
  }

  void async(std::function<void()> work) override {
    const std::lock_guard guard(lock_);
    queue_.push_back(std::move(work));
  }
  bool isMainThread() const override { return std::this_thread::get_id() == main_; }

  void sync(std::function<void()>) override { fatal("not part of this fake"); }
  void after(Duration, std::function<void()>) override { fatal("not part of this fake"); }
  RegistrationRef every(Duration, std::function<void()>) override { fatal("not part of this fake"); }
  RegistrationRef watch(int, std::function<void()>) override { fatal("not part of this fake"); }
  void background(std::function<void()>) override { fatal("not part of this fake"); }
  TimePoint now() const override { fatal("not part of this fake"); }
  void sleep(Duration) override { fatal("not part of this fake"); }

 private:
  const std::thread::id main_ = std::this_thread::get_id();
  std::mutex lock_;  // guards the queue
  std::vector<std::function<void()>> queue_;
};

/// The parts of a platform that the settings ask; whatever else is asked for ends the test.
class FakePlatform : public Platform {
 public:
  FakePreferences fakePreferences;
  FakeLoginItem fakeLoginItem;
  FakeScreens fakeScreens;
  FakeDispatch fakeDispatch;

  FakePlatform() { setPlatform(this); }
  ~FakePlatform() override { setPlatform(nullptr); }

  Preferences& preferences() override { return fakePreferences; }
  LoginItem& loginItem() override { return fakeLoginItem; }
  Screens& screens() override { return fakeScreens; }
  Dispatch& dispatch() override { return fakeDispatch; }

  WindowServer& windowServer() override { fatal("not part of this fake"); }
  WindowList& windowList() override { fatal("not part of this fake"); }
  Applications& applications() override { fatal("not part of this fake"); }
  AccessibilityWindows& accessibility() override { fatal("not part of this fake"); }
  InputEvents& inputEvents() override { fatal("not part of this fake"); }
  WindowCapture& windowCapture() override { fatal("not part of this fake"); }
  HotKeyRegistrar& hotKeys() override { fatal("not part of this fake"); }
  Permissions& permissions() override { fatal("not part of this fake"); }
  std::string name() const override { return "fake"; }
  OperatingSystemVersion operatingSystemVersion() const override { return {27, 0}; }
  std::int32_t processID() const override { return 1; }
  std::vector<SessionFinding> examineSession() override { return {}; }
};

/// The facades on a folder of this test's own, with a fake platform.
class SettingsTest : public ::testing::Test {
 protected:
  SettingsTest() { ConfigStore::useDirectory(folder.path()); }
  ~SettingsTest() override {
    L10n::setResourceFolder({});
    ConfigStore::useDirectory({});
  }

  /// Makes this the configuration.
  void configure(std::string_view json) {
    writeText(ConfigStore::fileURL(), json);
    ConfigStore::useDirectory(folder.path());
  }
  [[nodiscard]] std::string log() const { return readText(Log::fileURL()); }

  TemporaryFolder folder;
  FakePlatform platform;
};

}  // namespace tessaspaces::testing
